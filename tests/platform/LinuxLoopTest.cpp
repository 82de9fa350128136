#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/RealActivity.h"
#include "mrp/platform/linux/SignalWatch.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace Linux {
namespace {

using Korv::never;
using Korv::now;

using Platform::Timer;
using Platform::WheelTimer;

// Input that comes when it is told.
struct Input {
   void write() const { EXPECT_EQ( ::eventfd_write( descriptor.number(), 1 ), 0 ); }
   void read() const {
      eventfd_t count;
      EXPECT_EQ( ::eventfd_read( descriptor.number(), &count ), 0 );
   }
   Descriptor descriptor{ ::eventfd( 0, 0 ) };
};

class LinuxLoop : public testing::Test {
 protected:
   // A watch for reading.
   std::unique_ptr< DescriptorWatch > watch( Input const & input,
                                             DescriptorWatch::Callback callback ) {
      return std::make_unique< DescriptorWatch >( activity, input.descriptor.number(),
                                                  DescriptorWatch::reading, std::move( callback ) );
   }
   void rounds( int n ) {
      for ( int i = 0; i < n; ++i ) {
         activity.runFor( 0 );
      }
   }

   RealActivity activity;
   Input a, b;
};

TEST_F( LinuxLoop, aWatchMayEndInAnyCallback ) {
   a.write();
   b.write();
   std::unique_ptr< DescriptorWatch > first, second;
   int calls = 0;
   auto const ends = [&, keeps = std::string( "the callback's own" )]( Korv::U32 ) {
      ++calls;
      first.reset();
      second.reset();
      EXPECT_EQ( keeps, "the callback's own" );
   };
   first = watch( a, ends );
   second = watch( b, ends );
   rounds( 3 );
   EXPECT_EQ( calls, 1 );
}

// As leave timers in a storm: each of them reads a frame, and there are as many as attributes.
TEST_F( LinuxLoop, aTickOfManySlowTimersKeepsNobodyOut ) {
   Korv::Ptr< Dovr::TimerWheel > const wheel(
      new Dovr::TimerWheel( nullptr, activity.clock(), 100, 600, true, 16 ) );
   std::vector< std::unique_ptr< WheelTimer > > timers;
   std::vector< int > fired;
   for ( int i = 0; i < 60; ++i ) {
      timers.push_back( std::make_unique< WheelTimer >(
         [&fired, i] {
            ::usleep( 10'000 );
            fired.push_back( i );
         },
         wheel ) );
      timers.back()->timeMinIs( wheel->tickTime( 1 ) );
   }
   std::size_t firedBeforeInput = timers.size(), firedBeforeReview = timers.size();
   a.write();
   Timer review( [&] { firedBeforeReview = fired.size(); }, Korv::Clock::Rank::review );
   review.timeMinIs( wheel->tickTime( 1 ) + 0.05 );
   auto const input = watch( a, [&]( Korv::U32 ) {
      a.read();
      firedBeforeInput = fired.size();
   } );
   ::usleep( 120'000 );
   while ( fired.size() < timers.size() ) {
      rounds( 1 );
   }
   EXPECT_TRUE( std::is_sorted( fired.begin(), fired.end() ) );
   EXPECT_GT( firedBeforeInput, 0u ); // the wheel is ahead
   EXPECT_LT( firedBeforeInput, 10u );
   EXPECT_LT( firedBeforeReview, 30u );
}

TEST_F( LinuxLoop, wakesUpForWhatThereIsAndSetsTheTimerWhenTheNextTimeChanges ) {
   Timer late( nullptr ), taken( [] { FAIL(); } );
   late.timeMinIs( now() + 3'600 );
   taken.timeMinIs( now() + 0.3 );
   int inputs = 0;
   auto const input = watch( a, [&]( Korv::U32 ) {
      a.read();
      taken.timeMinIs( never );
      if ( ++inputs < 100 ) {
         a.write();
      }
   } );
   a.write();
   Seconds const start = now();
   activity.runFor( 0.4 );
   EXPECT_EQ( inputs, 100 );
   EXPECT_GE( now() - start, 0.4 );
   EXPECT_LE( activity.wakeUps(), 101u );     // by each input, and at the end
   EXPECT_LE( activity.timerSettings(), 2u ); // for the timer that was taken back, and the end
}

TEST_F( LinuxLoop, signalsComeInTheirTurn ) {
   std::vector< int > signals;
   sigset_t held;
   {
      SignalWatch const watching( activity, { SIGUSR1, SIGUSR2 }, [&]( int signal ) {
         signals.push_back( signal );
         activity.doStop();
      } );
      std::raise( SIGUSR1 );
      std::raise( SIGUSR1 ); // one with the first
      activity.runFor( 30 );
      std::raise( SIGUSR2 );
      activity.runFor( 30 );
      rounds( 2 );
   }
   EXPECT_EQ( signals, ( std::vector< int >{ SIGUSR1, SIGUSR2 } ) );
   ::pthread_sigmask( SIG_SETMASK, nullptr, &held );
   EXPECT_EQ( ::sigismember( &held, SIGUSR1 ), 0 );
}

// Else a period of one tick would be two: no loop wakes up on the dot.
TEST_F( LinuxLoop, aTimerOfTheWheelFiresAtTheTimeOfItsTick ) {
   Korv::Ptr< Dovr::TimerWheel > const wheel(
      new Dovr::TimerWheel( nullptr, activity.clock(), 10, 600, true, 16 ) );
   Seconds const start = now();
   int fired = 0, onTheDot = 0;
   WheelTimer timer( nullptr, wheel );
   timer.action = [&] {
      auto const ticks = static_cast< Korv::U64 >( ( now() - start ) / 0.01 + 0.5 );
      onTheDot += now() == wheel->tickTime( ticks ) ? 1 : 0;
      if ( ++fired == 20 ) {
         activity.doStop();
      }
      timer.timeMinIs( now() + 0.01 );
   };
   timer.timeMinIs( now() + 0.01 );
   activity.runFor( 10 );
   EXPECT_EQ( fired, 20 );
   EXPECT_GT( onTheDot, 10 );
}

} // namespace
} // namespace Linux
