#include "mrp/platform/korv/Clock.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Korv {
namespace {

using Platform::Timer;

TEST( Clock, firesEachTimerAtItsOwnTimeAndThenStands ) {
   Memory::VirtualActivity outer;
   outer.advanceTo( 5 );
   {
      Memory::VirtualActivity activity; // in force for its lifetime
      std::vector< Seconds > times;
      Timer second( [&] { times.push_back( now() ); } );
      Timer first( [&] {
         times.push_back( now() );
         second.timeMinIs( 0.5 );
      } );
      first.timeMinIs( 0.25 );
      EXPECT_EQ( activity.nextTime(), 0.25 );
      activity.advanceTo( 0.5 );
      EXPECT_EQ( times, ( std::vector< Seconds >{ 0.25, 0.5 } ) );
      activity.advanceTo( 2 );
      EXPECT_EQ( now(), 2 );
      EXPECT_EQ( activity.nextTime(), never );
   }
   EXPECT_EQ( now(), 5 );
}

TEST( Clock, firesTimersOfOneTimeByRankAndThenByArming ) {
   Memory::VirtualActivity activity;
   std::string order;
   auto writes = [&]( char c ) { return [&order, c] { order += c; }; };
   Timer a( writes( 'a' ) ), b( writes( 'b' ) ), c( writes( 'c' ) ), gone( writes( 'g' ) );
   Timer review( writes( 'R' ), Clock::Rank::review );
   Timer wheel(
      [&] {
         order += 'W';
         gone.timeMinIs( never );
      },
      Clock::Rank::wheel );
   for ( Timer * const timer : { &a, &b, &gone, &review, &c, &wheel } ) {
      timer->timeMinIs( 1 );
   }
   b.timeMinIs( 1 ); // held already: keeps its place
   a.timeMinIs( 2 );
   a.timeMinIs( 1 ); // armed anew: last
   activity.advanceTo( 1 );
   EXPECT_EQ( order, "WRbca" );
}

} // namespace
} // namespace Korv
