// The agent's side in memory, for tests, replay, scripts and examples: all that a participant is
// given, and a network to stand on.
#pragma once

#include "mrp/platform/bridging/Bridging.h"
#include "mrp/platform/interface/AllEthPhyIntfStatusDir.h"
#include "mrp/platform/interface/AllIntfStatusDir.h"
#include "mrp/platform/memory/Network.h"
#include "mrp/platform/mirel/EntityManager.h"
#include "mrp/platform/stp/Stp.h"

#include <optional>

namespace Memory {

// Makes the entities and publishes those that a participant looks up. It shares them with its
// participants, which may outlive it.
class Host {
 public:
   explicit Host( Korv::Name const & name = "host" );
   Host( Host const & ) = delete;
   Host & operator=( Host const & ) = delete;
   ~Host();

   Korv::Ptr< Mirel::EntityManager > const & em() const { return em_; }
   Korv::Ptr< Bridging::Config > const & brConfig() const { return brConfig_; }
   Korv::Ptr< Bridging::Topology::Config > const & brTopoConfig() const { return brTopoConfig_; }
   Korv::Ptr< Stp::Status > const & stpStatus() const { return stpStatus_; }
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir > const & ethPhyIntfStatusDir() const {
      return ethPhyIntfStatusDir_;
   }
   Korv::Ptr< Interface::AllIntfStatusDir > const & allIntfStatusDir() const {
      return allIntfStatusDir_;
   }
   Korv::Ptr< Network > const & network() const { return network_; }

   // An interface with its device, and entries for its address and MTU where they are given.
   void interfaceIs( Pelk::IntfId const & intfId, std::optional< Pelk::EthAddr > addr = {},
                     std::optional< Korv::U32 > mtu = {} );
   void interfaceDel( Pelk::IntfId const & intfId );

   // The interface's device, for wires and frames; null if there is no such interface.
   Device * device( Pelk::IntfId const & intfId ) const { return network_->device( intfId ); }
   // The Pam that a participant has opened there, or null.
   Pam * pam( Pelk::IntfId const & intfId ) const;

   // Called for each frame that leaves any interface.
   void onTransmit( Network::Transmit transmit ) { network_->onTransmit( std::move( transmit ) ); }

 private:
   Korv::Ptr< Mirel::EntityManager > em_;
   Korv::Ptr< Bridging::Config > brConfig_;
   Korv::Ptr< Bridging::Topology::Config > brTopoConfig_;
   Korv::Ptr< Stp::Status > stpStatus_;
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir_;
   Korv::Ptr< Interface::AllIntfStatusDir > allIntfStatusDir_;
   Korv::Ptr< Network > network_;
};

} // namespace Memory
