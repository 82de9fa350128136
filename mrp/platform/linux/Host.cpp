#include "mrp/platform/linux/Host.h"

#include "mrp/platform/pelk/NetNs.h"

namespace Linux {

Host::Host( RealActivity & activity, Korv::Name const & name )
   : Host( activity, name, new Network( activity, Pelk::DEFAULT_NS ) ) {}

Host::Host( RealActivity & activity, Korv::Name const & name, Korv::Ptr< Network > network )
   : HostEntities( name, network ), network_( std::move( network ) ),
     bridgePorts_( activity.clock(), stpStatus() ),
     linkMonitor_( activity, [this]( std::string const & link ) { handleLink( link ); } ) {
   network_->onOpened(
      [this]( Pelk::IntfId const & intfId ) { bridgePorts_.doAnnounce( intfId ); } );
}

// What the callbacks refer to goes with the host, and participants may still open and close.
Host::~Host() {
   network_->onOpened( {} );
   network_->onProblem( {} );
}

void Host::interfaceIs( Pelk::IntfId const & intfId ) {
   followed_.emplace( intfId.stringValue(), intfId );
   linkMonitor_.readWaiting();
   handleLink( intfId.stringValue() );
}

void Host::interfaceDel( Pelk::IntfId const & intfId ) {
   if ( followed_.erase( intfId.stringValue() ) != 0 ) {
      handleGone( intfId );
   }
}

void Host::handleLink( std::string const & name ) {
   auto const followed = followed_.find( name );
   if ( followed == followed_.end() ) {
      return;
   }
   Pelk::IntfId const intfId = followed->second;
   Link const * const found = linkMonitor_.table().link( name );
   if ( !found || !found->ethernet ) {
      handleGone( intfId );
      return;
   }
   Link const link = *found;
   // The device last: a participant that wants it sends at once, and needs the rest for that.
   if ( link.addr ) {
      ethPhyIntfStatusDir()->intfStatusIs( intfId, *link.addr );
   }
   allIntfStatusDir()->intfStatusIs( intfId, link.mtu, link.up );
   bridgePorts_.portStateIs( intfId, link.portState );
   network_->deviceIs( intfId, link.index );
}

void Host::handleGone( Pelk::IntfId const & intfId ) {
   network_->deviceDel( intfId );
   bridgePorts_.portStateIs( intfId, std::nullopt );
   allIntfStatusDir()->intfStatusDel( intfId );
   ethPhyIntfStatusDir()->intfStatusDel( intfId );
}

} // namespace Linux
