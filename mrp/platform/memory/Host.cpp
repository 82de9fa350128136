#include "mrp/platform/memory/Host.h"

#include "mrp/platform/pelk/NetNs.h"

namespace Memory {

Host::Host( Korv::Name const & name ) : Host( name, new Network( Pelk::DEFAULT_NS ) ) {}

Host::Host( Korv::Name const & name, Korv::Ptr< Network > network )
   : HostEntities( name, network ), network_( std::move( network ) ) {}

// What the callback refers to goes with the host, and participants may still send.
Host::~Host() { network_->onTransmit( {} ); }

void Host::interfaceIs( Pelk::IntfId const & intfId, std::optional< Pelk::EthAddr > addr,
                        std::optional< Korv::U32 > mtu ) {
   // The device last: a participant that wants it sends at once, and needs the rest for that.
   if ( addr ) {
      ethPhyIntfStatusDir()->intfStatusIs( intfId, *addr );
   }
   if ( mtu ) {
      allIntfStatusDir()->intfStatusIs( intfId, *mtu );
   }
   network_->deviceIs( intfId );
}

void Host::interfaceDel( Pelk::IntfId const & intfId ) {
   network_->deviceDel( intfId );
   allIntfStatusDir()->intfStatusDel( intfId );
   ethPhyIntfStatusDir()->intfStatusDel( intfId );
}

Pam * Host::pam( Pelk::IntfId const & intfId ) const {
   Device const * const found = device( intfId );
   return found ? found->pam() : nullptr;
}

} // namespace Memory
