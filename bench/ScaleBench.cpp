// 64 interfaces of 4,094 VLANs: what an attribute costs when there are 262,016 of them.
#include "mrp/platform/memory/VirtualActivity.h"

#include "bench/Agent.h"
#include "bench/Benches.h"
#include "bench/Observer.h"
#include "bench/Rounds.h"

#include <malloc.h>
#include <memory>

namespace Bench {
namespace {

constexpr std::size_t interfaces = 64;
constexpr std::size_t attributes = interfaces * allVlans;

double heapBytes() {
   auto const info = mallinfo2();
   return static_cast< double >( info.uordblks + info.hblkhd );
}

} // namespace

void refreshAtScale( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Agent one( Mrp::MVRP, 1 );
   Agent many( Mrp::MVRP, interfaces );
   Bytes const frame = vlansFrame( TestSupport::JoinIn );
   auto const onEach = [&] {
      for ( std::size_t i = 0; i < interfaces; ++i ) {
         many.receive( i, frame );
      }
   };
   auto const onOne = [&] {
      for ( std::size_t i = 0; i < interfaces; ++i ) {
         one.receive( 0, frame );
      }
   };
   onOne();
   double const before = heapBytes();
   onEach();
   activity.advanceBy( 2 ); // committed
   double const bytes = ( heapBytes() - before ) / static_cast< double >( attributes );
   if ( many.committed( TestSupport::vlanType ) != attributes ) {
      state.SkipWithError( "not all attributes are committed" );
      return;
   }
   onEach();
   onOne();

   LookUps const lookUps = ascendingLookUps( attributes );
   std::vector< double > growth;
   double small = 0;
   U64 joins = 0;
   alternate( state, "refresh of 262,016 VLANs, 64 interfaces",
              { .prepare =
                   [&] {
                      small = secondsOf( onOne, 1 );
                      joins = many.joins();
                   },
                .work = [&] { growth.push_back( secondsOf( onEach, 1 ) / small ); },
                .yardstick = lookUps,
                .check = [&] { return many.joins() - joins == attributes; },
                .attributes = attributes,
                .settleYardstick = 1 } );
   state.counters["growth"] = median( growth );
   state.counters["bytes_per_attribute"] = bytes;
   addLine( "its cost an attribute, against 4,094 VLANs", median( growth ),
            { .aim = 1.2, .floor = 1.5 } );
   addLine( "heap bytes a committed VLAN, of 262,016", bytes, { .aim = 128, .floor = 200 } );
}

// An observer comes and is told everything.
void observerAtScale( benchmark::State & state ) {
   Memory::VirtualActivity activity;
   Agent agent( Mrp::MVRP, interfaces );
   Bytes const frame = vlansFrame( TestSupport::JoinIn );
   for ( std::size_t i = 0; i < interfaces; ++i ) {
      agent.receive( i, frame );
   }
   activity.advanceBy( 2 ); // committed
   LookUps const lookUps = ascendingLookUps( attributes );
   double const before = heapBytes();
   std::unique_ptr< Observer > observer;
   alternate( state, "all of 262,016 VLANs to a new observer",
              { .prepare = [&] { observer.reset(); },
                .work = [&] { observer = std::make_unique< Observer >( agent ); },
                .yardstick = lookUps,
                .check = [&] { return agent.committed( TestSupport::vlanType ) == attributes; },
                .attributes = attributes,
                .settleYardstick = 1 } );
   addLine( "bytes sent a VLAN",
            static_cast< double >( observer->taken() ) / static_cast< double >( attributes ) );
   addLine( "heap bytes an observer holds a VLAN",
            ( heapBytes() - before ) / static_cast< double >( attributes ) );
}
} // namespace Bench
