#include "mrp/platform/memory/Host.h"

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/pelk/NetNs.h"

namespace Memory {

Host::Host( Korv::Name const & name )
   : em_( new Mirel::EntityManager( name ) ), brConfig_( new Bridging::Config( "brConfig" ) ),
     brTopoConfig_( new Bridging::Topology::Config( "brTopoConfig" ) ),
     stpStatus_( new Stp::Status( "stpStatus" ) ),
     ethPhyIntfStatusDir_( new Interface::AllEthPhyIntfStatusDir( "ethPhyIntfStatusDir" ) ),
     allIntfStatusDir_( new Interface::AllIntfStatusDir( "allIntfStatusDir" ) ),
     network_( new Network( Pelk::DEFAULT_NS ) ) {
   em_->entityIs( "interface/status/all", allIntfStatusDir_ );
   em_->entityIs( Cell::path( "interface/status/local" ),
                  new Interface::AllIntfStatusLocalDir( "allIntfStatusLocalDir" ) );
   em_->entityIs( Korv::format( "kni/ns/%s/status", Pelk::DEFAULT_NS ), network_ );
}

// What the callback refers to goes with the host, and participants may still send.
Host::~Host() { network_->onTransmit( {} ); }

void Host::interfaceIs( Pelk::IntfId const & intfId, std::optional< Pelk::EthAddr > addr,
                        std::optional< Korv::U32 > mtu ) {
   // The device last: a participant that wants it sends at once, and needs the rest for that.
   if ( addr ) {
      ethPhyIntfStatusDir_->intfStatusIs( intfId, *addr );
   }
   if ( mtu ) {
      allIntfStatusDir_->intfStatusIs( intfId, *mtu );
   }
   network_->deviceIs( intfId );
}

void Host::interfaceDel( Pelk::IntfId const & intfId ) {
   network_->deviceDel( intfId );
   allIntfStatusDir_->intfStatusDel( intfId );
   ethPhyIntfStatusDir_->intfStatusDel( intfId );
}

Pam * Host::pam( Pelk::IntfId const & intfId ) const {
   Device const * const found = device( intfId );
   return found ? found->pam() : nullptr;
}

} // namespace Memory
