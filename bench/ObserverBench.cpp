// What an observer of the mirror stream costs the engine. The yardstick is the same work without
// one, but for single changes, where it is the look-up.
#include "mrp/platform/memory/VirtualActivity.h"

#include "bench/Agent.h"
#include "bench/Benches.h"
#include "bench/Observer.h"
#include "bench/Rounds.h"

#include <memory>
#include <optional>

namespace Bench {
using TestSupport::JoinIn;
using TestSupport::vlanType;

namespace {

// Two participants with the same past, the first of them observed.
struct Pair {
   Pair() : observed( Mrp::MVRP, 1 ), alone( Mrp::MVRP, 1 ) {}
   void receive( Bytes const & frame ) {
      observed.receive( 0, frame );
      alone.receive( 0, frame );
   }
   Agent observed;
   Agent alone;
};

// Each of 4,094 attributes gets another applicant state.
enum class Watched { no, yes, stalled };
void changeRounds( benchmark::State & state, std::string const & name, Watched watched ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, 1 );
   agent.receive( 0, vlansFrame( JoinIn ) );
   activity.advanceBy( 1 );
   std::optional< Observer > observer;
   if ( watched != Watched::no ) {
      observer.emplace( agent );
   }
   if ( watched == Watched::stalled ) {
      observer->stall();
   }
   auto & vlans = *agent.sm()
                      .mrpStatus()
                      ->application( Mrp::MVRP )
                      ->attrDatabase( agent.intfId( 0 ) )
                      ->intfTypeApplicant( vlanType );
   std::vector< Mrp::MrpAttrDatabase * > attributes;
   for ( auto vlan = vlans.mrpAttribute().walk(); vlan; ++vlan ) {
      attributes.push_back( vlan.value().ptr() );
   }
   auto applicant = Mrp::mrpAnxiousActive;
   LookUps const lookUps = ascendingLookUps( allVlans );
   alternate( state, name,
              { .prepare =
                   [&] {
                      if ( observer ) {
                         observer->takeAll();
                      }
                   },
                .work =
                   [&] {
                      applicant = applicant == Mrp::mrpAnxiousActive ? Mrp::mrpQuietActive
                                                                     : Mrp::mrpAnxiousActive;
                      for ( auto * const attribute : attributes ) {
                         attribute->applicantStateIs( applicant );
                      }
                   },
                .yardstick = lookUps,
                .attributes = allVlans,
                .passes = 4,
                .settleWork = 4 } );
}

} // namespace

void changeAlone( benchmark::State & state ) {
   changeRounds( state, "a change that nobody observes", Watched::no );
}
void changeObserved( benchmark::State & state ) {
   changeRounds( state, "a change with an observer", Watched::yes );
}
void changeStalled( benchmark::State & state ) {
   changeRounds( state, "a change with one that reads nothing", Watched::stalled );
}

// A neighbour repeats what is registered. What changes with each frame are the counters and the
// parse context.
void refreshObserved( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Pair pair;
   Bytes const frame = vlansFrame( JoinIn );
   pair.receive( frame );
   activity.advanceBy( 1 );
   Observer observer( pair.observed );
   U64 joins = 0;
   U64 taken = 0;
   constexpr int passes = 8, settle = 8;
   alternate(
      state, "refresh with an observer, against one without",
      { .prepare =
           [&] {
              joins = pair.observed.joins();
              taken = observer.taken();
           },
        .work =
           [&] {
              pair.observed.receive( 0, frame );
              observer.takeAll();
           },
        .yardstick = [&] { pair.alone.receive( 0, frame ); },
        .check =
           [&] { return pair.observed.joins() - joins == U64{ allVlans } * ( passes + settle ); },
        .attributes = allVlans,
        .passes = passes,
        .settleWork = settle,
        .settleYardstick = settle },
      { .aim = 1.0 } );
   addLine( "bytes that it sends a frame",
            static_cast< double >( observer.taken() - taken ) / ( passes + settle ) );
}

// From the first frame to the committed tree and the last byte.
void firstRegistrationObserved( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Bytes const frame = vlansFrame( JoinIn );
   std::unique_ptr< Pair > pair;
   std::unique_ptr< Observer > observer;
   U64 taken = 0;
   alternate( state, "first registration with one, against one without",
              { .prepare =
                   [&] {
                      observer.reset();
                      pair.reset();
                      pair = std::make_unique< Pair >();
                      observer = std::make_unique< Observer >( pair->observed );
                      taken = observer->taken();
                   },
                .work =
                   [&] {
                      pair->observed.receive( 0, frame );
                      activity.advanceBy( 0.2 );
                      observer->takeAll();
                   },
                .yardstick =
                   [&] {
                      pair->alone.receive( 0, frame );
                      activity.advanceBy( 0.2 );
                   },
                .check = [&] { return pair->observed.committed( vlanType ) == allVlans; },
                .attributes = allVlans,
                .settleYardstick = 0 },
              { .aim = 1.2, .floor = 1.5 } );
   addLine( "bytes that it sends a VLAN",
            static_cast< double >( observer->taken() - taken ) / allVlans );
}

// Every attribute changes state and changes back.
void leaveAllObserved( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Pair pair;
   Bytes const leaveAll = vlanLeaveAllFrame();
   Bytes const join = vlansFrame( JoinIn );
   pair.receive( join );
   activity.advanceBy( 1 );
   Observer observer( pair.observed );
   auto const round = [&]( Agent & agent ) {
      agent.receive( 0, leaveAll );
      agent.receive( 0, join );
   };
   alternate( state, "LeaveAll and rejoin with one, against one without",
              { .prepare = [&] { activity.advanceBy( 5 ); },
                .work =
                   [&] {
                      round( pair.observed );
                      observer.takeAll();
                   },
                .yardstick = [&] { round( pair.alone ); },
                .check = [&] { return pair.observed.registered( vlanType ) == allVlans; },
                .attributes = allVlans,
                .settleYardstick = 0 } );
}

} // namespace Bench
