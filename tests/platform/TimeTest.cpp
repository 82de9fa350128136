// Timers of the clock and of the wheel, and reviews, at the times of a clock that moves when it is
// told to.
#include "mrp/platform/dovr/ReviewTimer.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Platform {
namespace {

using Korv::Seconds;
using Times = std::vector< Seconds >;

class Time : public testing::Test {
 protected:
   // Writes down a name and the time, and then does something.
   std::function< void() > writes( char name, std::function< void() > then = nullptr ) {
      return [this, name, then] {
         fired += name;
         times.push_back( Korv::now() );
         if ( then ) {
            then();
         }
      };
   }
   Korv::Ptr< Dovr::TimerWheel > wheelOf( Memory::VirtualActivity & of ) {
      return new Dovr::TimerWheel( nullptr, of.clock(), 100, 60000, true, 1024 );
   }

   Memory::VirtualActivity activity;
   Korv::Ptr< Dovr::TimerWheel > wheel = wheelOf( activity );
   std::string fired;
   Times times;
};

TEST_F( Time, ofTheClockGoesByRankAndThenByArming ) {
   Timer a( writes( 'a' ) ), b( writes( 'b' ) ), c( writes( 'c' ) ), gone( writes( 'g' ) );
   Timer review( writes( 'R' ), Korv::Clock::Rank::review );
   Timer tick( writes( 'W', [&] { gone.timeMinIs( Korv::never ); } ), Korv::Clock::Rank::wheel );
   for ( Timer * const timer : { &a, &b, &gone, &review, &c, &tick } ) {
      timer->timeMinIs( 1 );
   }
   b.timeMinIs( 1 ); // held already: keeps its place
   a.timeMinIs( 2 );
   a.timeMinIs( 1 ); // armed anew: last
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, "WRbca" );
}

TEST_F( Time, ofTheWheelIsTheFirstTickAtOrAfterThatAskedFor ) {
   struct {
      Seconds made, armedAt, asked, fires;
   } const table[] = {
      { 0, 0, 0.11, 0.2 },
      { 0, 0, 0, 0.1 },           // the tick of the making is over
      { 0, 0.25, 0.1, 0.3 },      // in the past
      { 0, 0.3, 0.3, 0.4 },       // the tick of now is over
      { 0, 0.1, 0.1 + 0.2, 0.3 }, // a sum that is a hair above
      { 0, 0, 0.3000009, 0.3 },   // within the tolerance
      { 0, 0, 0.3000011, 0.4 },
      { 0, 0, 123456.7, 123456.7 },
      { 0.75, 0.75, 1.1, 1.15 }, // ticks count from the making
      { 1.1, 1.1, 3.3, 3.3 },    // and their times are those that one would write
      { 1e6 + 0.05, 1e6 + 0.05, 1e6 + 0.2, 1e6 + 0.25 },
   };
   for ( auto const & row : table ) {
      SCOPED_TRACE( testing::Message() << "made " << row.made << " asked " << row.asked );
      Memory::VirtualActivity own;
      own.advanceTo( row.made );
      WheelTimer timer( writes( 'a' ), wheelOf( own ) );
      own.advanceTo( row.armedAt );
      times.clear();
      timer.timeMinIs( row.asked );
      own.advanceTo( row.fires + 10 );
      EXPECT_EQ( times, Times{ row.fires } );
   }
}

TEST_F( Time, ofTheWheelMayBeTakenBackHoweverFar ) {
   WheelTimer timer( writes( 'a' ), wheel );
   for ( Seconds const far : { Korv::never, 1e300, std::numeric_limits< double >::infinity() } ) {
      timer.timeMinIs( Korv::now() + 0.1 );
      timer.timeMinIs( far );
      EXPECT_EQ( activity.nextTime(), Korv::never );
   }
   timer.timeMinIs( 5 );
   activity.advanceTo( 6 );
   EXPECT_EQ( times, Times{ 5 } );
}

TEST_F( Time, ofTheWheelGoesInATickByTheLatestArming ) {
   WheelTimer a( writes( 'a' ), wheel ), b( writes( 'b' ), wheel ), c( writes( 'c' ), wheel );
   for ( WheelTimer * const moved : { &a, &b, &c } ) {
      Seconds const time = Korv::now() + 0.1;
      for ( WheelTimer * const timer : { &a, &b, &c } ) {
         timer->timeMinIs( time );
      }
      a.timeMinIs( time ); // held already: keeps its place
      moved->timeMinIs( time + 0.1 );
      moved->timeMinIs( time );
      activity.advanceTo( time + 1 );
      fired += ' ';
   }
   EXPECT_EQ( fired, "bca acb abc " );
}

TEST_F( Time, aTimerOfTheWheelMayDestroyOthersAndItselfAndLetGoOfTheWheel ) {
   std::optional< WheelTimer > a, b, c;
   WheelTimer d( writes( 'd', [&] { a.reset(); } ), wheel );
   a.emplace( writes( 'a',
                      [&] {
                         c.reset();
                         d.timeMinIs( 0.5 );
                         wheel = nullptr;
                      } ),
              wheel );
   b.emplace( writes( 'b', [&] { b.reset(); } ), wheel );
   c.emplace( writes( 'c' ), wheel );
   for ( WheelTimer * const timer : { &*a, &*b, &*c, &d } ) {
      timer->timeMinIs( 0.1 );
   }
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, "abd" );
   EXPECT_EQ( times, ( Times{ 0.1, 0.1, 0.5 } ) );
}

TEST_F( Time, aTimerOfTheWheelThatThrowsLeavesTheOthersArmed ) {
   WheelTimer a( writes( 'a', [] { throw 1; } ), wheel );
   WheelTimer b( writes( 'b' ), wheel ), c( writes( 'c' ), wheel );
   a.timeMinIs( 0.1 );
   b.timeMinIs( 0.1 );
   c.timeMinIs( 0.2 );
   EXPECT_THROW( activity.advanceTo( 1 ), int );
   EXPECT_EQ( fired, "a" );
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, "abc" );
}

// The loop may be late: ticks are then made up for in their order.
TEST_F( Time, ofLateTicksComesInOrderAndOnce ) {
   WheelTimer late( writes( 'l' ), wheel ), b( writes( 'b' ), wheel ), c( writes( 'c' ), wheel );
   WheelTimer a( writes( 'a', [&] { late.timeMinIs( 0.3 ); } ), wheel );
   b.timeMinIs( 0.2 );
   a.timeMinIs( 0.1 );
   c.timeMinIs( 0.5 );
   activity.clock()->nowIs( 0.47 );
   while ( activity.clock()->doFireNext() ) {
   }
   EXPECT_EQ( fired, "abl" );
   EXPECT_EQ( times, Times( 3, 0.47 ) );
   EXPECT_EQ( activity.nextTime(), 0.5 ); // and not for a tick without timers
}

// Four credits, of which one comes back each second, counted from when the stock fell below full.
TEST_F( Time, ofReviewsIsThatOfTheirCredits ) {
   Timer timer( nullptr, Korv::Clock::Rank::review );
   Dovr::ReviewTimer reviews( timer, 1.0f, 4, 0.1f, 0.1f );
   bool askAgain = true;
   timer.action = writes( 'r', [&] {
      EXPECT_FALSE( reviews.reviewPending() );
      reviews.lastReviewIs( Korv::now() );
      if ( askAgain ) {
         reviews.doUpdateNextReview();
      }
   } );
   reviews.doUpdateNextReview();
   activity.advanceTo( 3.5 );
   EXPECT_EQ( times, ( Times{ 0.1, 0.2, 0.3, 0.4, 1.1, 2.1, 3.1 } ) );
   askAgain = false;
   activity.advanceTo( 60 ); // full long since: the count starts anew
   EXPECT_EQ( times.back(), 4.1 );
   times.clear();
   askAgain = true;
   reviews.doUpdateNextReview();
   EXPECT_TRUE( reviews.reviewPending() );
   activity.advanceTo( 62.5 );
   EXPECT_EQ( times, ( Times{ 60.1, 60.2, 60.3, 60.4, 61.1, 62.1 } ) );
}

} // namespace
} // namespace Platform
