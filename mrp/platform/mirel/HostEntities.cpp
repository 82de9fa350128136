#include "mrp/platform/mirel/HostEntities.h"

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/pelk/NetNs.h"

namespace Mirel {

HostEntities::HostEntities( Korv::Name const & name,
                            Korv::Ptr< KernelNetInfo::Status > const & network )
   : em_( new EntityManager( name ) ), brConfig_( new Bridging::Config( "brConfig" ) ),
     brTopoConfig_( new Bridging::Topology::Config( "brTopoConfig" ) ),
     stpStatus_( new Stp::Status( "stpStatus" ) ),
     ethPhyIntfStatusDir_( new Interface::AllEthPhyIntfStatusDir( "ethPhyIntfStatusDir" ) ),
     allIntfStatusDir_( new Interface::AllIntfStatusDir( "allIntfStatusDir" ) ) {
   em_->entityIs( "interface/status/all", allIntfStatusDir_ );
   em_->entityIs( Cell::path( "interface/status/local" ),
                  new Interface::AllIntfStatusLocalDir( "allIntfStatusLocalDir" ) );
   em_->entityIs( Korv::format( "kni/ns/%s/status", Pelk::DEFAULT_NS ), network );
}

} // namespace Mirel
