// What time does by itself: LeaveAlls of our own, expiry, and nothing at all for an hour.
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include "bench/Agent.h"
#include "bench/Benches.h"
#include "bench/Rounds.h"

namespace Bench {
using TestSupport::JoinIn;
using TestSupport::vlanType;

// The timer, every attribute through both machines, the frames.
void sentLeaveAll( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, 1 );
   Bytes const join = vlansFrame( JoinIn );
   LookUps const lookUps = ascendingLookUps( allVlans );
   U64 sent = 0;
   alternate( state, "LeaveAll sent, over 4,094 registered VLANs",
              { .prepare =
                   [&] {
                      agent.receive( 0, join );
                      activity.advanceBy( 5 );
                      agent.sm().leaveAllSm()->doPushLeaveAll( agent.intfId( 0 ), vlanType, 0.05 );
                      sent = agent.framesSent();
                   },
                .work = [&] { activity.advanceBy( 0.5 ); },
                .yardstick = lookUps,
                .check =
                   [&] {
                      return agent.framesSent() > sent && agent.registered( vlanType ) == 0 &&
                             agent.committed( vlanType ) == allVlans;
                   },
                .attributes = allVlans } );
}

// A LeaveAll that nobody answers: 4,094 attributes on one shared timer.
void expiry( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, 1 );
   Bytes const join = vlansFrame( JoinIn );
   Bytes const leaveAll = vlanLeaveAllFrame();
   LookUps const lookUps = ascendingLookUps( allVlans );
   alternate( state, "expiry of 4,094 VLANs, removal included",
              { .prepare =
                   [&] {
                      agent.receive( 0, join );
                      activity.advanceBy( 1 );
                      agent.receive( 0, leaveAll );
                   },
                .work = [&] { activity.advanceBy( 5 ); },
                .yardstick = lookUps,
                .check = [&] { return agent.committed( vlanType ) == 0; },
                .attributes = allVlans } );
}

// A thousand interfaces on which nobody says anything, for an hour.
void idle( benchmark::State & state ) {
   constexpr std::size_t interfaces = 1000;
   constexpr Korv::Seconds hour = 3600;
   Memory::VirtualActivity activity;
   Agent const agent( Mrp::MVRP, interfaces, Mrp::MrpTimerConstants::defaultLeaveAllTime );
   std::vector< double > seconds;
   std::vector< double > wakeUps;
   for ( auto _ : state ) {
      U64 const sent = agent.framesSent();
      Korv::Seconds const end = Korv::now() + hour;
      double count = 0;
      seconds.push_back( secondsOf(
         [&] {
            while ( activity.nextTime() <= end ) {
               activity.advanceTo( activity.nextTime() );
               ++count;
            }
         },
         1 ) );
      wakeUps.push_back( count / hour );
      state.SetIterationTime( seconds.back() );
      if ( agent.framesSent() - sent < interfaces * U64{ 200 } ) {
         state.SkipWithError( "too few LeaveAlls" );
         return;
      }
   }
   addLine( "1,000 idle interfaces: seconds of work in an hour", median( seconds ) );
   addLine( "their wake-ups a second", median( wakeUps ) );
}

} // namespace Bench
