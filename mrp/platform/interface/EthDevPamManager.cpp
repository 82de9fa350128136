#include "mrp/platform/interface/EthDevPamManager.h"

namespace Interface {

EthDevPamManager::EthDevPamManager( Korv::Ptr< PamDesiredIntfDir > desired,
                                    Korv::Ptr< EthDevPamCollection > collection,
                                    Korv::Ptr< DeviceIntfStatusDir > devices )
   : desiredDir_( std::move( desired ) ), collection_( std::move( collection ) ),
     deviceDir_( std::move( devices ) ) {
   desired_.notifierIs( desiredDir_.ptr() );
   devices_.notifierIs( deviceDir_.ptr() );
}

void EthDevPamManager::enabledIs( bool enabled ) {
   enabled_ = enabled;
   for ( auto walk = desiredDir_->intfDesired().walk(); walk; ++walk ) {
      handleIntf( Pelk::IntfId( walk.key() ) );
   }
}

void EthDevPamManager::handleIntf( Pelk::IntfId const & intfId ) {
   DeviceIntfStatus const * const device = deviceDir_->intfStatus( intfId );
   bool const wanted = enabled_ && desiredDir_->intfDesired( intfId ) && device;
   bool const present = collection_->intfPam( intfId ) != nullptr;
   if ( wanted && !present ) {
      if ( auto const pam = device->newPam( settings_ ) ) {
         collection_->intfPamIs( intfId, pam );
      }
   } else if ( !wanted && present ) {
      collection_->intfPamDel( intfId );
   }
}

} // namespace Interface
