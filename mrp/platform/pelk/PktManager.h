// Packets for sending.
#pragma once

#include "mrp/platform/pelk/BufferPool.h"

namespace Pelk {

// Makes packets and limits how many of them live at one time, so that a device that takes no
// frames cannot take all memory. Received packets are not its own and do not count. It outlives
// its packets.
class PktManager {
 public:
   // The room ahead of a new packet's data: a body of 1500 bytes and the 15 in front of it, so
   // that a frame is closed where it was built.
   static constexpr std::size_t headRoom = 1500 + 15;

   // An empty packet over a buffer of zeros, or null at the limit.
   Korv::Ptr< Pkt > newPkt();

   U32 maxPkts() const { return maxPkts_; }
   void maxPktsIs( U32 maxPkts ) { maxPkts_ = maxPkts; }
   U32 pkts() const { return pkts_; } // that live

 private:
   class ManagedPkt;
   BufferPool buffers_{ headRoom };
   U32 maxPkts_ = 10000;
   U32 pkts_ = 0;
};

PktManager & globalPktManager();

} // namespace Pelk
