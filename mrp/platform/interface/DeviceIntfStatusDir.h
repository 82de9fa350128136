// The devices of a network as one participant sees them.
#pragma once

#include "mrp/platform/interface/IntfDir.h"
#include "mrp/platform/kernel/KernelNetInfo.h"

namespace Interface {

// One device, with the way to open it.
class DeviceIntfStatus : public IntfEntry {
 public:
   DeviceIntfStatus( Pelk::IntfId const & intfId,
                     Korv::Ptr< KernelNetInfo::Status > const & kernelStatus )
      : IntfEntry( intfId ), kernelStatus_( kernelStatus ) {}

   Korv::Ptr< Pelk::EthDevPam > newPam( KernelNetInfo::PamSettings const & settings ) const {
      return kernelStatus_->newPam( intfId(), settings );
   }

 private:
   Korv::Ptr< KernelNetInfo::Status > kernelStatus_;
};

// Filled by the status manager (NetNsIntfStatusManagerRoot.h).
class DeviceIntfStatusDir : public IntfDir< DeviceIntfStatus > {
 public:
   using IntfDir::IntfDir;

   void intfStatusIs( Pelk::IntfId const & intfId,
                      Korv::Ptr< KernelNetInfo::Status > const & kernelStatus ) {
      IntfDir::intfStatusIs( intfId, kernelStatus );
   }
};

} // namespace Interface
