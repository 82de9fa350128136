// Packets for received frames: the one entrance for bytes from outside.
//
// The parser reads on behind the end of a frame, and moves its cursor there, where a frame's own
// numbers send it. What makes that safe is the buffer: behind the frame's data stand zeros, more
// of them than any cursor can jump over in one step (a list length is up to 65,535, a vector's
// events up to 4,780 bytes), and zeros end every walk.
#pragma once

#include "mrp/platform/pelk/BufferPool.h"

namespace Pelk {

// Packets and buffers are used again, so that in the steady state nothing is allocated and a frame
// costs its copy and the clearing of what the previous frame left behind its end.
class ReceivePool {
 public:
   static constexpr std::size_t zerosBehind = 65'535 + 8'192;
   static constexpr std::size_t frameBytesMin = 14;

   // A packet with these bytes at the front of its buffer and zeros behind them; null for a runt,
   // which has not even a header.
   Korv::Ptr< Pkt > newPkt( U8 const * bytes, std::size_t size );

 private:
   // Beyond the buffer's end: a cursor that stands right there can still be read at.
   static constexpr std::size_t overread = 64;
   BufferPool buffers_{ 2'048 + zerosBehind + overread };
};

ReceivePool & receivePool();

} // namespace Pelk
