// What an agent hands to its participants.
#pragma once

#include "mrp/platform/bridging/Bridging.h"
#include "mrp/platform/interface/AllEthPhyIntfStatusDir.h"
#include "mrp/platform/interface/AllIntfStatusDir.h"
#include "mrp/platform/kernel/KernelNetInfo.h"
#include "mrp/platform/mirel/EntityManager.h"
#include "mrp/platform/stp/Stp.h"

namespace Mirel {

// Makes the entities and publishes those that a participant looks up. It shares them with its
// participants, which may outlive it. Base of the hosts, which fill the entities: in memory by
// hand, on Linux as the kernel says.
class HostEntities {
 public:
   HostEntities( HostEntities const & ) = delete;
   HostEntities & operator=( HostEntities const & ) = delete;

   Korv::Ptr< EntityManager > const & em() const { return em_; }
   Korv::Ptr< Bridging::Config > const & brConfig() const { return brConfig_; }
   Korv::Ptr< Bridging::Topology::Config > const & brTopoConfig() const { return brTopoConfig_; }
   Korv::Ptr< Stp::Status > const & stpStatus() const { return stpStatus_; }
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir > const & ethPhyIntfStatusDir() const {
      return ethPhyIntfStatusDir_;
   }
   Korv::Ptr< Interface::AllIntfStatusDir > const & allIntfStatusDir() const {
      return allIntfStatusDir_;
   }

 protected:
   HostEntities( Korv::Name const & name, Korv::Ptr< KernelNetInfo::Status > const & network );
   ~HostEntities() = default;

 private:
   Korv::Ptr< EntityManager > em_;
   Korv::Ptr< Bridging::Config > brConfig_;
   Korv::Ptr< Bridging::Topology::Config > brTopoConfig_;
   Korv::Ptr< Stp::Status > stpStatus_;
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir_;
   Korv::Ptr< Interface::AllIntfStatusDir > allIntfStatusDir_;
};

} // namespace Mirel
