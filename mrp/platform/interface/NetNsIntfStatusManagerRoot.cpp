#include "mrp/platform/interface/NetNsIntfStatusManagerRoot.h"

namespace Interface {

IntfStatusManager::IntfStatusManager( Korv::Name namespaceName,
                                      Korv::Ptr< DeviceIntfStatusDir > dir,
                                      Korv::Ptr< KernelNetInfo::Status > kernelStatus )
   : NamedEntity( std::move( namespaceName ) ), dir_( std::move( dir ) ),
     kernelStatus_( std::move( kernelStatus ) ) {
   kernel_.notifierIs( kernelStatus_.ptr() );
   for ( auto walk = kernelStatus_->devices().walk(); walk; ++walk ) {
      handleDevice( Pelk::IntfId( walk.key() ) );
   }
}

void IntfStatusManager::handleDevice( Pelk::IntfId const & intfId ) {
   if ( kernelStatus_->hasDevice( intfId ) ) {
      dir_->intfStatusIs( intfId, kernelStatus_ );
   } else {
      dir_->intfStatusDel( intfId );
   }
}

NetNsIntfStatusManagerRoot::NetNsIntfStatusManagerRoot(
   Activity /* activity */, Korv::Ptr< AllIntfStatusDir const > all,
   Korv::Ptr< AllIntfStatusLocalDir const > local, bool filterByNetNs )
   : all_( std::move( all ) ), local_( std::move( local ) ), filterByNetNs_( filterByNetNs ) {}

IntfStatusManager * NetNsIntfStatusManagerRoot::intfStatusManagerIs(
   Activity /* activity */, Korv::Ptr< DeviceIntfStatusDir > dir,
   Korv::Ptr< KernelNetInfo::Status > kernelStatus, Korv::Name const & namespaceName ) {
   return Korv::memberIs( intfStatusManager_, namespaceName, namespaceName, dir, kernelStatus );
}

} // namespace Interface
