#include "mrp/platform/korv/Clock.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <string>

namespace Korv {
namespace {

using Platform::Timer;

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
