#include "mrp/platform/linux/BridgePorts.h"

#include <linux/if_bridge.h>
#include <utility>

namespace Linux {

BridgePorts::BridgePorts( Korv::Ptr< Korv::Clock > clock, Korv::Ptr< Stp::Status > stpStatus )
   : tree_( stpStatus->stpiStatusIs( "Stp" )->mstiStatusIs( "Cist" ) ),
     announce_( std::move( clock ), [this] { handleAnnounce(); } ) {}

Stp::MstiPortStatus::Role BridgePorts::role( Korv::U8 state ) {
   using Role = Stp::MstiPortStatus::Role;
   return state == BR_STATE_FORWARDING ? Role::designated : Role::alternate;
}

void BridgePorts::portStateIs( Pelk::IntfId const & intfId, std::optional< Korv::U8 > state ) {
   if ( state ) {
      tree_->mstiPortStatusIs( intfId.stringValue(), role( *state ) );
   } else {
      tree_->mstiPortStatusDel( intfId.stringValue() );
   }
}

void BridgePorts::doAnnounce( Pelk::IntfId const & intfId ) {
   toAnnounce_.push_back( intfId );
   announce_.doRunIn( 0 );
}

void BridgePorts::handleAnnounce() {
   for ( Pelk::IntfId const & intfId : std::exchange( toAnnounce_, {} ) ) {
      Korv::Name const port( intfId.stringValue() );
      if ( auto const * const record = tree_->mstiPortStatus( port ) ) {
         auto const role = record->role();
         tree_->mstiPortStatusDel( port );
         tree_->mstiPortStatusIs( port, role );
      }
   }
}

} // namespace Linux
