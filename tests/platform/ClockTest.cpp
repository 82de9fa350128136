#include "mrp/platform/korv/Clock.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Korv {
namespace {

using Times = std::vector< Seconds >;

using Platform::Timer;

TEST( VirtualActivity, firesEachTimerAtItsOwnTimeAndThenStands ) {
   Memory::VirtualActivity activity;
   EXPECT_EQ( now(), 0 );
   Times times;
   Timer second( [&] { times.push_back( now() ); } );
   Timer first( [&] {
      times.push_back( now() );
      second.timeMinIs( 0.5 );
   } );
   Timer later( [&] { times.push_back( now() ); } );
   first.timeMinIs( 0.25 );
   later.timeMinIs( 2.5 );
   EXPECT_EQ( activity.nextTime(), 0.25 );

   activity.advanceTo( 2 );
   EXPECT_EQ( times, ( Times{ 0.25, 0.5 } ) );
   EXPECT_EQ( now(), 2 );
   activity.advanceBy( 0.5 ); // due at the time it stands at: included
   EXPECT_EQ( times.back(), 2.5 );
   EXPECT_EQ( activity.nextTime(), never );
   activity.advanceTo( never );
}

TEST( Clock, firesTimersOfOneTimeByRankAndThenByArming ) {
   Memory::VirtualActivity activity;
   std::string order;
   auto writes = [&]( char c ) { return [&order, c] { order += c; }; };
   Timer a( writes( 'a' ) ), b( writes( 'b' ) ), c( writes( 'c' ) );
   Timer review( writes( 'R' ), Clock::Rank::review ), wheel( writes( 'W' ), Clock::Rank::wheel );
   for ( Timer * const timer : { &a, &b, &review, &c, &wheel } ) {
      timer->timeMinIs( 1 );
   }
   b.timeMinIs( 1 ); // held already: keeps its place
   a.timeMinIs( 2 );
   a.timeMinIs( 1 ); // armed anew: last
   activity.advanceTo( 1 );
   EXPECT_EQ( order, "WRbca" );
}

TEST( Clock, disarmedOrDestroyedTimerDoesNotFire ) {
   Memory::VirtualActivity activity;
   int fired = 0;
   Timer victim( [&] { ++fired; } );
   {
      Timer gone( [&] { ++fired; } );
      gone.timeMinIs( 1 );
   }
   Timer killer( [&] { victim.timeMinIs( never ); }, Clock::Rank::wheel );
   killer.timeMinIs( 1 );
   victim.timeMinIs( 1 );
   activity.advanceTo( 2 );
   EXPECT_EQ( fired, 0 );
}

TEST( ActivityManager, theLatestOneIsInForceForItsLifetime ) {
   Memory::VirtualActivity outer;
   outer.advanceTo( 5 );
   {
      Memory::VirtualActivity const inner;
      EXPECT_EQ( &activityManager(), &inner );
      EXPECT_EQ( now(), 0 );
   }
   EXPECT_EQ( now(), 5 );
}

} // namespace
} // namespace Korv
