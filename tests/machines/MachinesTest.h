// What the machines' tests ask of a participant beyond its frames.
#pragma once

#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpIntfLeaveAllSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpLeaveSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {

inline std::string const et1 = "Ethernet1";

inline Pelk::IntfId id( std::string const & interface ) { return Pelk::IntfId( interface ); }

// Both events to all attributes of the type on Ethernet1, as a change of the spanning tree or a
// LeaveAll of our own posts them.
inline void post( Participant & participant, Mrp::MrpApplicantEvent applicantEvent,
                  Mrp::MrpRegistrarEvent registrarEvent ) {
   participant.sm().leaveAllSm()->mrpPostLeaveAllToSm( id( et1 ), 1, applicantEvent,
                                                       registrarEvent );
}

// On which timers an attribute of type 1 waits: "", "explicit", "shared", "explicit shared".
inline std::string waitsOn( Participant & participant, U64 key ) {
   auto const & registrar = *participant.sm().registrarSm();
   auto const * const own = registrar.explicitLeaveSm().find( { id( et1 ), 1, key } );
   auto const * const shared = registrar.leaveSm().find( { id( et1 ), 1, 0 } );
   std::string where = own && ( *own )->leavePending( key ) ? "explicit" : "";
   if ( shared && ( *shared )->leavePending( key ) ) {
      where += where.empty() ? "shared" : " shared";
   }
   return where;
}

} // namespace TestSupport
