#include "mrp/platform/korv/Clock.h"

#include "mrp/platform/linux/RealActivity.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace Korv {
namespace {

using Times = std::vector< Seconds >;

class Timer : public Clock::Reactor {
 public:
   explicit Timer( std::function< void() > action, Clock::Rank rank = Clock::Rank::outside )
      : Reactor( activityManager().clock(), rank ), action_( std::move( action ) ) {}
   void onTime() override { action_(); }

 private:
   std::function< void() > action_;
};

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

TEST( VirtualActivity, firesWhatIsOverdueNowAndNeverGoesBack ) {
   Memory::VirtualActivity activity;
   activity.advanceTo( 3 );
   Times times;
   Timer overdue( [&] { times.push_back( now() ); } );
   overdue.timeMinIs( 1 );
   activity.advanceTo( 2 );
   EXPECT_EQ( times, Times{ 3 } );
   EXPECT_EQ( now(), 3 );
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

TEST( RealActivity, firesInOrderNotBeforeTheirTimeAndStops ) {
   Linux::RealActivity activity;
   Seconds const start = now();
   Times late;
   auto notes = [&]( Seconds asked ) {
      return [&late, start, asked] { late.push_back( now() - start - asked ); };
   };
   Timer second( notes( 0.04 ) ), first( notes( 0.02 ) ), beyond( notes( 10 ) );
   second.timeMinIs( start + 0.04 );
   first.timeMinIs( start + 0.02 );
   beyond.timeMinIs( start + 10 );

   activity.runFor( 0.06 );
   ASSERT_EQ( late.size(), 2u );
   EXPECT_GE( late[0], 0 );
   EXPECT_GE( late[1], 0 );
   EXPECT_GE( now(), start + 0.06 );

   Timer stops( [&] { activity.doStop(); } );
   Timer behind( notes( 0 ) );
   stops.timeMinIs( now() );
   behind.timeMinIs( now() );
   activity.runFor( 10 );
   EXPECT_LT( now(), start + 5 );
   EXPECT_EQ( late.size(), 2u ); // the loop ended with the notification that stopped it
}

} // namespace
} // namespace Korv
