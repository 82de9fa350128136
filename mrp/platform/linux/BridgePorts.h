// The ports of the kernel's bridges, as status of the spanning tree.
//
// The kernel gives a port's state and no role. What is published is one tree for all ports,
// instance "Cist" of protocol instance "Stp", in which a port that forwards has the role
// designated, and one that does not, for whatever reason, the role alternate: so a port that stops
// forwarding flushes its interface, and one that begins to makes it declare anew.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/stp/Stp.h"

#include <optional>
#include <vector>

namespace Linux {

// Owned by the host, which tells it of ports.
class BridgePorts {
 public:
   BridgePorts( Korv::Ptr< Korv::Clock > clock, Korv::Ptr< Stp::Status > stpStatus );

   // The interface's state as a port of a bridge (BR_STATE_...), or none if it is no port.
   void portStateIs( Pelk::IntfId const & intfId, std::optional< Korv::U8 > state );

   // A participant takes note of roles only on interfaces that it has access to, and has just got
   // that: the record goes and comes again, so that it hears of the role that there is. It does so
   // in a notification of its own, since the participant is at work when it gets access.
   void doAnnounce( Pelk::IntfId const & intfId );

   static Stp::MstiPortStatus::Role role( Korv::U8 state );

 private:
   void handleAnnounce();

   Korv::Ptr< Stp::MstiStatus > tree_;
   std::vector< Pelk::IntfId > toAnnounce_;
   Korv::CallbackTimer announce_;
};

} // namespace Linux
