#include "mrp/platform/memory/Network.h"

namespace Memory {

Network::~Network() {
   for ( auto walk = device_.walk(); walk; ++walk ) {
      walk.value()->network_ = nullptr;
   }
}

Device * Network::device( Pelk::IntfId const & intfId ) const {
   return Korv::memberAt( device_, intfId );
}

Device * Network::deviceIs( Pelk::IntfId const & intfId ) {
   Korv::memberIs( device_, intfId, *this, intfId );
   Status::deviceIs( intfId );
   return device( intfId );
}

void Network::deviceDel( Pelk::IntfId const & intfId ) {
   if ( Korv::Ptr< Device > const leaving = device( intfId ) ) {
      leaving->network_ = nullptr;
      device_.erase( intfId );
      Status::deviceDel( intfId );
   }
}

Korv::Ptr< Pelk::EthDevPam > Network::newPam( Pelk::IntfId const & intfId,
                                              KernelNetInfo::PamSettings const & settings ) {
   Device * const found = device( intfId );
   return found ? new Pam( found, settings ) : nullptr;
}

} // namespace Memory
