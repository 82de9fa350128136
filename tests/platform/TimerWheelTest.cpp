#include "mrp/platform/dovr/TimerWheel.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Dovr {
namespace {

class TimerWheelTest : public testing::Test {
 protected:
   // Fires by writing down its name and the time, and then does what it is told.
   struct Timer : Platform::WheelTimer {
      Timer( TimerWheelTest & t, std::string n )
         : ActionTimer( nullptr, t.wheel ), test( t ), name( std::move( n ) ) {}
      void onTime() override {
         test.fired += name;
         test.times.push_back( Korv::now() );
         ActionTimer::onTime();
      }
      TimerWheelTest & test;
      std::string name;
   };
   using Times = std::vector< Seconds >;

   Memory::VirtualActivity activity;
   Korv::Ptr< TimerWheel > wheel =
      new TimerWheel( nullptr, activity.clock(), 100, 60000, true, 1024 );
   std::string fired;
   Times times;
};

TEST_F( TimerWheelTest, firesAtTheFirstTickAtOrAfterTheTime ) {
   struct {
      Seconds made, armedAt, asked, fires;
   } const table[] = {
      { 0, 0, 0.1, 0.1 },
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
      wheel = new TimerWheel( nullptr, own.clock(), 100, 60000, true, 1024 );
      own.advanceTo( row.armedAt );
      Timer timer( *this, "timer" );
      times.clear();
      timer.timeMinIs( row.asked );
      own.advanceTo( row.fires + 10 );
      EXPECT_EQ( times, Times{ row.fires } );
   }
}

TEST_F( TimerWheelTest, takenBackItDoesNotFire ) {
   Timer timer( *this, "a" );
   for ( Seconds const far : { Korv::never, 1e300, std::numeric_limits< double >::infinity() } ) {
      timer.timeMinIs( activity.clock()->now() + 0.1 );
      timer.timeMinIs( far );
      EXPECT_EQ( activity.nextTime(), Korv::never );
      activity.advanceBy( 1 );
      EXPECT_EQ( fired, "" );
   }
   timer.timeMinIs( 5 ); // back from there
   activity.advanceTo( 5 );
   EXPECT_EQ( fired, "a" );
}

TEST_F( TimerWheelTest, aTimerMayDestroyOthersAndItselfAndLetGoOfTheWheel ) {
   auto a = std::make_unique< Timer >( *this, "a" );
   auto b = std::make_unique< Timer >( *this, "b" );
   auto c = std::make_unique< Timer >( *this, "c" );
   Timer d( *this, "d" );
   for ( Timer * const timer : { a.get(), b.get(), c.get(), &d } ) {
      timer->timeMinIs( 0.1 );
   }
   a->action = [&] {
      c = nullptr;
      d.timeMinIs( 0.5 );
      wheel = nullptr;
   };
   b->action = [&b] { b = nullptr; };
   d.action = [&a] { a = nullptr; };
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, "abd" );
   EXPECT_EQ( times, ( Times{ 0.1, 0.1, 0.5 } ) );
}

TEST_F( TimerWheelTest, aTimerThatThrowsLeavesTheOthersArmed ) {
   Timer a( *this, "a" ), b( *this, "b" ), c( *this, "c" );
   a.action = [] { throw 1; };
   a.timeMinIs( 0.1 );
   b.timeMinIs( 0.1 );
   c.timeMinIs( 0.2 );
   EXPECT_THROW( activity.advanceTo( 1 ), int );
   EXPECT_EQ( fired, "a" );
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, "abc" );
}

// The loop may be late: ticks are then made up for in their order.
TEST_F( TimerWheelTest, lateTicksComeInOrderAndOnce ) {
   Timer a( *this, "a" ), b( *this, "b" ), c( *this, "c" ), late( *this, "l" );
   b.timeMinIs( 0.2 );
   a.timeMinIs( 0.1 );
   c.timeMinIs( 0.5 );
   a.action = [&] { late.timeMinIs( 0.3 ); };
   activity.clock()->nowIs( 0.47 );
   while ( activity.clock()->doFireNext() ) {
   }
   EXPECT_EQ( fired, "abl" );
   EXPECT_EQ( times, Times( 3, 0.47 ) );
   EXPECT_EQ( activity.nextTime(), 0.5 ); // and not for a tick without timers
}

TEST_F( TimerWheelTest, timersOfATickFireInTheOrderOfTheirLatestArming ) {
   Timer a( *this, "a" ), b( *this, "b" ), c( *this, "c" ), d( *this, "d" );
   Timer * const all[] = { &a, &b, &c, &d };
   for ( Timer * const moved : all ) {
      Seconds const time = Korv::now() + 0.1;
      for ( Timer * const timer : all ) {
         timer->timeMinIs( time );
      }
      a.timeMinIs( time ); // held already: keeps its place
      moved->timeMinIs( time + 0.1 );
      moved->timeMinIs( time );
      activity.advanceTo( time + 1 );
      fired += ' ';
   }
   EXPECT_EQ( fired, "bcda acdb abdc abcd " );
}

} // namespace
} // namespace Dovr
