// The agent's side in memory, for tests, replay, scripts and examples: all that a participant is
// given, and a network to stand on.
#pragma once

#include "mrp/platform/memory/Network.h"
#include "mrp/platform/mirel/HostEntities.h"

#include <optional>

namespace Memory {

// What participants send after the host has gone, nobody sees.
class Host : public Mirel::HostEntities {
 public:
   explicit Host( Korv::Name const & name = "host" );
   ~Host();

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
   Host( Korv::Name const & name, Korv::Ptr< Network > network );

   Korv::Ptr< Network > network_;
};

} // namespace Memory
