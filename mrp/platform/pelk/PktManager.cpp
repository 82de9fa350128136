#include "mrp/platform/pelk/PktManager.h"

#include <cstring>

namespace Pelk {

class PktManager::ManagedPkt : public Pkt, public Recycled< ManagedPkt > {
 public:
   ManagedPkt( PktManager & manager, Korv::Ptr< SharedBuffer > buffer )
      : Pkt( std::move( buffer ) ), manager_( manager ) {
      ++manager_.pkts_;
   }
   ~ManagedPkt() override { --manager_.pkts_; }

 private:
   PktManager & manager_;
};

Korv::Ptr< Pkt > PktManager::newPkt() {
   if ( pkts_ >= maxPkts_ ) {
      return nullptr;
   }
   auto memory = buffers_.take( headRoom );
   std::memset( memory.bytes.get(), 0, memory.dirty );
   memory.dirty = headRoom;
   return new ManagedPkt(
      *this, new PooledBuffer( buffers_, std::move( memory ), headRoom, headRoom, 0 ) );
}

PktManager & globalPktManager() {
   static auto & manager = *new PktManager; // outlives every packet
   return manager;
}

} // namespace Pelk
