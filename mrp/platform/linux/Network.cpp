#include "mrp/platform/linux/Network.h"

#include <algorithm>

namespace Linux {

void Network::deviceIs( Pelk::IntfId const & intfId, int index ) {
   indexes_.insertOrAssign( intfId, index );
   Status::deviceIs( intfId );
}

void Network::deviceDel( Pelk::IntfId const & intfId ) {
   indexes_.erase( intfId );
   Status::deviceDel( intfId );
}

Pam * Network::pam( Pelk::IntfId const & intfId ) const {
   auto const latest = std::find_if( pams_.rbegin(), pams_.rend(),
                                     [&]( Pam * pam ) { return pam->intfId() == intfId; } );
   return latest == pams_.rend() ? nullptr : *latest;
}

Korv::Ptr< Pelk::EthDevPam > Network::newPam( Pelk::IntfId const & intfId,
                                              KernelNetInfo::PamSettings const & settings ) {
   int const * const index = indexes_.find( intfId );
   if ( !index ) {
      return nullptr;
   }
   InterfaceProblem problem;
   PacketSocket socket = PacketSocket::open( *index, settings, problem );
   if ( problem ) {
      if ( problem_ ) {
         problem_( intfId, problem );
      }
      return nullptr;
   }
   Korv::Ptr< Pelk::EthDevPam > const pam =
      new Pam( activity_, this, intfId, std::move( socket ), settings );
   if ( opened_ ) {
      opened_( intfId );
   }
   return pam;
}

} // namespace Linux
