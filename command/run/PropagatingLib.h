// MVRP on a host or a bridge: which VLANs are declared where.
//
// A VLAN is declared on an interface if
//    - the host itself wants it, or
//    - it is a bridge, the interface forwards, and some other interface that forwards has it
//      registered (IEEE 802.1Q, 10.3: attribute propagation).
// It is withdrawn as soon as neither holds. What is registered is asked of the participant's
// database whenever it matters, so there is no second account of it to go wrong; a registration
// that waits for its leave timer still counts.
//
// A port that begins to forward has its neighbours declare anew: the participant has flushed what
// it knew of them.
//
// A New that is received is passed on as a New. Numbers that are no VLAN's can be registered, as
// the participant takes what it hears, and are not passed on.
#pragma once

#include "command/run/DeclaringLib.h"
#include "command/run/ForwardingPorts.h"

#include <optional>

namespace Command {

class PropagatingLib : public DeclaringLib {
 public:
   using Vlans = std::set< Korv::U16 >;

   // `vlans` are those of the host itself.
   PropagatingLib( Tell tell, Vlans vlans ) : DeclaringLib( std::move( tell ) ), vlans_( vlans ) {}

   // Makes it a bridge; before start. A bridge without a spanning tree forwards everywhere.
   void bridgeIs( Korv::Ptr< Stp::Status const > const & stpStatus );

   bool mrpJoinIndication( Mrp::MrpParameters const & indication ) override;

 protected:
   void settle( Keys const & keys ) override;
   Keys allKeys() const override;

 private:
   using Interfaces = std::vector< Pelk::IntfId >;

   Interfaces forwardingNow();
   void settleVlan( U64 vlan );

   Vlans vlans_;
   std::optional< ForwardingPorts > forwardingPorts_; // of a bridge
   Interfaces forwarding_;                            // at the last pass; of no bridge none
   // Where and of which VLAN a New was heard since the last pass.
   std::set< std::pair< Pelk::IntfId, U64 > > news_;
};

} // namespace Command
