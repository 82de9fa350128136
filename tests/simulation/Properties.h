// What must hold of an agent's participant.
//
// Left out, because the protocol as this system has it allows it:
//   - A leave timer of key 0 is also the shared timer of its type: when one fires, both go, and
//     what waited on the other stays in Lv until its next leave. No scene has a key 0.
//   - A second packet context stays open, for as long as it takes, until the interface has a first
//     one again. It may tell the neighbour of a join that has since been withdrawn, until the next
//     LeaveAll but one.
//   - A lone LeaveAll in a frame of several VLAN vectors cuts the earlier ones, so that the
//     receiver may meet anything behind them. MVRP frames may be malformed while there are faults;
//     MSRP frames never are.
//   - A neighbour may answer a LeaveAll with Mt and its own old value, and the declarer then
//     repeats its join with just that value. Where a LeaveAll and the declarations come in several
//     frames, or several neighbours answer, a changed value can lose to the old one each time.
//     There no value is asked for.
#pragma once

#include "tests/simulation/Agent.h"

#include <sstream>

namespace Simulation {

inline std::ostream & operator<<( std::ostream & out, Kind const & kind ) {
   return out << ' ' << Korv::toText( kind );
}

// Throws a Violation with the words unless it holds.
template < class... Words >
void require( bool holds, Port const & port, Words const &... words ) {
   if ( !holds ) {
      std::ostringstream out;
      out << "at " << Korv::now() << ' ' << port.intfId;
      ( out << ... << words );
      throw Violation( out.str() );
   }
}

// Between any two events, with no LeaveAll due later than `longestPeriod` from now:
//   - declared is what the applicant holds in Quiet Passive or Quiet Active, with the value
//     declared, and the applicant is in one of the five states that it can reach;
//   - told of is what the registrar holds in In or Lv;
//   - the index names what exists: committed and not marked, or pending; and nothing else but what
//     is committed and marked; no index is empty;
//   - what is marked for deletion is committed and has no pending copy;
//   - an attribute in Lv waits on a leave timer, and no other attribute does, unless its port was
//     swept;
//   - nothing of a frame is left in the parser's queues, nothing in the interface queue, and no
//     LeaveAll mark is raised;
//   - MSRP sends and receives no malformed frame;
//   - all LeaveAll of an interface that is up are due within that time, and no other's.
void checkAlways( Port & port, Korv::Seconds longestPeriod );

// With faults, operations and the last LeaveAll long past: nothing waits any more; each attribute
// is declared or registered, or its join is refused; what is registered has its value in
// `expected`, if that gives one; no first packet context is open.
void checkAtRest( Port & port, Book const & expected );

} // namespace Simulation
