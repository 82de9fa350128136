// All VLANs of one interface. The keys of the yardstick are theirs, ascending.
#include "mrp/platform/memory/VirtualActivity.h"

#include "bench/Agent.h"
#include "bench/Benches.h"
#include "bench/Rounds.h"

#include <memory>

namespace Bench {
using TestSupport::JoinIn;
using TestSupport::vlanType;

namespace {

// What every switch does all the time: a neighbour repeats what is registered.
void refreshRounds( benchmark::State & state, std::string const & name, int settle, int passes,
                    Goal goal ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, 1 );
   Bytes const frame = vlansFrame( JoinIn );
   agent.receive( 0, frame );
   activity.advanceBy( 1 );
   LookUps const lookUps = ascendingLookUps( allVlans );
   U64 joins = 0;
   alternate(
      state, name,
      { .prepare = [&] { joins = agent.joins(); },
        .work = [&] { agent.receive( 0, frame ); },
        .yardstick = lookUps,
        .check = [&] { return agent.joins() - joins == U64{ allVlans } * U64( settle + passes ); },
        .attributes = allVlans,
        .passes = passes,
        .settleWork = settle,
        .settleYardstick = settle },
      goal );
}

// A participant that has seen nothing, in the place of the one that has been measured.
void renew( std::unique_ptr< Agent > & agent ) {
   agent.reset();
   agent = std::make_unique< Agent >( Mrp::MVRP, 1 );
}

} // namespace

void refresh( benchmark::State & state ) {
   refreshRounds( state, "refresh of 4,094 VLANs", Round::settled, 8,
                  { .aim = 1.0, .floor = 2.0 } );
}

void refreshInTurns( benchmark::State & state ) {
   refreshRounds( state, "the same, a frame and its look-ups in turns", 0, 1, {} );
}

// From the first frame to the committed tree, on a participant that has seen none before.
void firstRegistration( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Bytes const frame = vlansFrame( JoinIn );
   LookUps const lookUps = ascendingLookUps( allVlans );
   std::unique_ptr< Agent > agent;
   alternate( state, "first registration of 4,094 VLANs, with commit",
              { .prepare = [&] { renew( agent ); },
                .work =
                   [&] {
                      agent->receive( 0, frame );
                      activity.advanceBy( 0.2 );
                   },
                .yardstick = lookUps,
                .check = [&] { return agent->committed( vlanType ) == allVlans; },
                .attributes = allVlans } );
}

// A LeaveAll, which is answered and starts a leave timer, and everything joined again by the frame
// behind it.
void leaveAllRound( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, 1 );
   Bytes const leaveAll = vlanLeaveAllFrame();
   Bytes const join = vlansFrame( JoinIn );
   agent.receive( 0, join );
   LookUps const lookUps = ascendingLookUps( allVlans );
   U64 sent = 0;
   alternate(
      state, "LeaveAll received, all 4,094 joined again",
      { .prepare =
           [&] {
              activity.advanceBy( 5 ); // the last round's leave timer has gone
              sent = agent.framesSent();
           },
        .work =
           [&] {
              agent.receive( 0, leaveAll );
              agent.receive( 0, join );
           },
        .yardstick = lookUps,
        .check =
           [&] { return agent.framesSent() > sent && agent.registered( vlanType ) == allVlans; },
        .attributes = allVlans },
      { .aim = 4.0 } );
}

// The application's side: each VLAN by a call, until the transmit timer has sent the last frame.
void declarations( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   LookUps const lookUps = ascendingLookUps( allVlans );
   std::unique_ptr< Agent > agent;
   alternate(
      state, "4,094 declarations, to frames",
      { .prepare = [&] { renew( agent ); },
        .work =
           [&] {
              for ( Korv::U16 vlanId = 1; vlanId <= allVlans; ++vlanId ) {
                 agent->declareVlan( vlanId );
              }
              activity.advanceBy( 0.2 );
           },
        .yardstick = lookUps,
        .check =
           [&] { return agent->framesSent() >= 2 && agent->committed( vlanType ) == allVlans; },
        .attributes = allVlans } );
}
} // namespace Bench
