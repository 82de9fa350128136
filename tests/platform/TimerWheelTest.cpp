#include "mrp/platform/dovr/TimerWheel.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Dovr {
namespace {

class TimerWheelTest : public testing::Test {
 protected:
   // Fires by writing down its name and the time, and then does what it is told.
   class Timer : public TimerWheel::Reactor {
    public:
      Timer( TimerWheelTest & test, std::string name )
         : Reactor( test.wheel ), test_( test ), name_( std::move( name ) ) {}
      void onTime() override {
         test_.fired.push_back( name_ );
         test_.times.push_back( Korv::now() );
         if ( auto const own = action ) { // the timer may go in it
            own();
         }
      }
      std::function< void() > action;

    private:
      TimerWheelTest & test_;
      std::string name_;
   };
   using Names = std::vector< std::string >;
   using Times = std::vector< Seconds >;

   Memory::VirtualActivity activity;
   Korv::Ptr< TimerWheel > wheel =
      new TimerWheel( nullptr, activity.clock(), 100, 60000, true, 1024 );
   Names fired;
   Times times;
};

TEST_F( TimerWheelTest, firesAtTheFirstTickAtOrAfterTheTime ) {
   struct {
      Seconds made, armedAt, asked, fires;
   } const table[] = {
      { 0, 0, 0.1, 0.1 },
      { 0, 0, 0.11, 0.2 },
      { 0, 0, 0, 0.1 }, // the tick of the making is over
      { 0, 0, -5, 0.1 },
      { 0, 0.25, 0.1, 0.3 }, // in the past
      { 0, 0.3, 0.3, 0.4 },  // the tick of now is over
      { 0, 0.3, 0.3 + 0.1, 0.4 },
      { 0, 0.35, 0.35 + 0.6, 1 },
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
   Timer never( *this, "never" ), infinite( *this, "infinite" ), far( *this, "far" );
   for ( Timer * const timer : { &never, &infinite, &far } ) {
      timer->timeMinIs( 0.1 );
   }
   never.timeMinIs( Korv::never );
   infinite.timeMinIs( std::numeric_limits< double >::infinity() );
   far.timeMinIs( 1e300 );
   {
      Timer gone( *this, "gone" );
      gone.timeMinIs( 0.1 );
   }
   EXPECT_EQ( activity.nextTime(), Korv::never );
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, Names{} );
   EXPECT_EQ( never.timeMin(), Korv::never );

   infinite.timeMinIs( 1.1 ); // back from there
   activity.advanceTo( 2 );
   EXPECT_EQ( fired, Names{ "infinite" } );
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
   EXPECT_EQ( fired, ( Names{ "a", "b", "d" } ) );
   EXPECT_EQ( times, ( Times{ 0.1, 0.1, 0.5 } ) );
}

TEST_F( TimerWheelTest, aTimerThatThrowsLeavesTheOthersArmed ) {
   Timer a( *this, "a" ), b( *this, "b" ), c( *this, "c" );
   a.action = [] { throw 1; };
   a.timeMinIs( 0.1 );
   b.timeMinIs( 0.1 );
   c.timeMinIs( 0.2 );
   EXPECT_THROW( activity.advanceTo( 1 ), int );
   EXPECT_EQ( fired, Names{ "a" } );
   activity.advanceTo( 1 );
   EXPECT_EQ( fired, ( Names{ "a", "b", "c" } ) );
}

// The loop may be late: ticks are then made up for in their order.
TEST_F( TimerWheelTest, lateTicksComeInOrderAndOnce ) {
   Timer a( *this, "a" ), b( *this, "b" ), c( *this, "c" ), late( *this, "late" );
   b.timeMinIs( 0.2 );
   a.timeMinIs( 0.1 );
   c.timeMinIs( 0.5 );
   a.action = [&] { late.timeMinIs( 0.3 ); };
   activity.clock()->nowIs( 0.47 );
   while ( activity.clock()->doFireNext() ) {
   }
   EXPECT_EQ( fired, ( Names{ "a", "b", "late" } ) );
   EXPECT_EQ( times, Times( 3, 0.47 ) );
   activity.advanceTo( 1 );
   EXPECT_EQ( fired.back(), "c" );
   EXPECT_EQ( times.back(), 0.5 );
}

TEST_F( TimerWheelTest, wakesUpOnlyForTicksThatHoldTimers ) {
   Timer a( *this, "a" ), b( *this, "b" );
   a.timeMinIs( 1000 );
   EXPECT_EQ( activity.nextTime(), 1000 );
   b.timeMinIs( 500.01 );
   EXPECT_EQ( activity.nextTime(), 500.1 );
   b.timeMinIs( 2000 );
   EXPECT_EQ( activity.nextTime(), 1000 );
   a.timeMinIs( Korv::never );
   EXPECT_EQ( activity.nextTime(), 2000 );
}

// Random arming against a plain list of what is asked for, in whole microseconds.
TEST_F( TimerWheelTest, agreesWithAListUnderRandomUse ) {
   constexpr int timers = 40;
   std::mt19937 random( 1 );
   auto below = [&]( int n ) { return static_cast< int >( random() % static_cast< U32 >( n ) ); };

   struct Asked {
      long tick = 0; // 0: not armed
      long arming = 0;
      Seconds time = Korv::never;
   };
   std::vector< Asked > asked( timers );
   std::vector< std::unique_ptr< Timer > > all;
   long armings = 0;
   long nowMicros = 0;
   long runningTick = 0;

   auto arm = [&]( int i ) {
      long const micros = nowMicros + ( below( 30 ) - 5 ) * ( below( 2 ) ? 100'000 : 12'345 );
      bool const off = below( 5 ) == 0;
      Seconds const time = off ? Korv::never : static_cast< Seconds >( micros ) / 1e6;
      Asked & a = asked[static_cast< std::size_t >( i )];
      if ( time != a.time ) {
         long const tick = ( std::max( 0L, micros ) + 99'999 ) / 100'000;
         long const done = runningTick ? runningTick : nowMicros / 100'000;
         a = { off ? 0 : std::max( tick, done + 1 ), ++armings, time };
      }
      all[static_cast< std::size_t >( i )]->timeMinIs( time );
   };
   for ( int i = 0; i < timers; ++i ) {
      all.push_back( std::make_unique< Timer >( *this, std::to_string( i ) ) );
      all.back()->action = [&, i] {
         Asked & a = asked[static_cast< std::size_t >( i )];
         runningTick = a.tick;
         nowMicros = runningTick * 100'000;
         for ( Asked const & other : asked ) {
            EXPECT_FALSE( other.tick &&
                          std::pair( other.tick, other.arming ) < std::pair( a.tick, a.arming ) );
         }
         EXPECT_EQ( Korv::now(), static_cast< Seconds >( nowMicros ) / 1e6 );
         a = {};
         for ( int n = below( 3 ); n > 0; --n ) {
            arm( below( timers ) );
         }
      };
   }
   for ( int step = 0; step < 3000; ++step ) {
      arm( below( timers ) );
      arm( below( timers ) );
      long const target = nowMicros + below( 3 ) * 50'000;
      activity.advanceTo( static_cast< Seconds >( target ) / 1e6 );
      runningTick = 0;
      nowMicros = target;
      for ( Asked const & a : asked ) {
         ASSERT_FALSE( a.tick && a.tick * 100'000 <= target ) << "missed at " << target;
      }
   }
   EXPECT_GT( fired.size(), 1000u );
}

} // namespace
} // namespace Dovr
