#include "mrp/platform/pelk/ReceivePool.h"

#include <cstring>

namespace Pelk {

namespace {

class ReceivedPkt : public Pkt, public Recycled< ReceivedPkt > {
 public:
   using Pkt::Pkt;
};

} // namespace

Korv::Ptr< Pkt > ReceivePool::newPkt( U8 const * bytes, std::size_t size ) {
   if ( size < frameBytesMin ) {
      return nullptr;
   }
   auto memory = buffers_.take( size + zerosBehind + overread );
   std::memcpy( memory.bytes.get(), bytes, size );
   if ( memory.dirty > size ) {
      std::memset( memory.bytes.get() + size, 0, memory.dirty - size );
   }
   memory.dirty = size;
   std::size_t const bufferSize = memory.size - overread;
   return new ReceivedPkt( new PooledBuffer( buffers_, std::move( memory ), bufferSize, 0, size ) );
}

ReceivePool & receivePool() {
   static auto & pool = *new ReceivePool; // outlives every packet
   return pool;
}

} // namespace Pelk
