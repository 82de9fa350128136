// Talkers whose stream ids are no neighbours, so that each has a vector of its own and no order
// helps. The yardstick looks the same ids up in the same order.
#include "mrp/platform/memory/VirtualActivity.h"

#include "bench/Agent.h"
#include "bench/Benches.h"
#include "bench/Rounds.h"

namespace Bench {

void refreshTalkers( benchmark::State & state ) {
   constexpr std::size_t streamCount = 4096;
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MSRP, 1 );
   auto const streams = scatteredStreams( streamCount );
   auto const frames = talkerFrames( streams, TestSupport::JoinIn );
   auto const receiveAll = [&] {
      for ( Bytes const & frame : frames ) {
         agent.receive( 0, frame );
      }
   };
   receiveAll();
   activity.advanceBy( 1 );
   receiveAll();
   LookUps const lookUps( streams );
   constexpr int passes = 4, settle = 4;
   U64 joins = 0;
   alternate( state, "refresh of 4,096 scattered talkers, 78 frames",
              { .prepare = [&] { joins = agent.joins(); },
                .work = receiveAll,
                .yardstick = lookUps,
                .check = [&] { return agent.joins() - joins == streamCount * ( settle + passes ); },
                .attributes = streamCount,
                .passes = passes,
                .settleWork = settle } );
}
} // namespace Bench
