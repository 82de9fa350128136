// What is measured, and how: the engine and its yardstick in turns, so that whatever else the
// machine does hits both, and medians over many turns.
//
// The yardstick is a std::map look-up of each of the same keys: what it would cost to find the
// attributes and to do nothing with them.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Bench {

// The keys of a map, put in by ascending key, and the order in which they are looked up.
//
// The loop is there several times, and the fastest copy is the yardstick: where in memory its
// branches stand decides, by a factor of two, how well the processor predicts them.
class LookUps {
 public:
   using Map = std::map< Korv::U64, Korv::U64 >;
   using Keys = std::vector< Korv::U64 >;

   explicit LookUps( Keys inOrder );
   std::size_t size() const { return inOrder_.size(); }
   void operator()() const { benchmark::DoNotOptimize( loop_( map_, inOrder_ ) ); }

 private:
   Keys inOrder_;
   Map map_;
   Korv::U64 ( *loop_ )( Map const & map, Keys const & keys ) = nullptr;
};

// 1 to `count`, ascending.
LookUps ascendingLookUps( std::size_t count );

struct Goal {
   double aim = 0; // 0: none
   double floor = 0;
};

// One round of a benchmark: `prepare` and `check`, untimed, around the engine's work, and then the
// yardstick.
//
// A processor that sees the same look-ups again and again learns by heart which way each branch
// goes: a look-up of 4,094 ascending keys costs 50 ns at first and 10 ns from the thirtieth time
// on. The engine's work gains by being repeated too, where it can be, and has settled after three
// times. So that the yardstick is the strictest there is, each side first runs `settle` times
// untimed, then `passes` times timed.
struct Round {
   std::function< void() > prepare = [] {};
   std::function< void() > work;
   std::function< void() > yardstick;
   // False: it did not do what it is measured for.
   std::function< bool() > check = [] { return true; };
   std::size_t attributes = 0; // per pass
   int passes = 1;
   int settleWork = 0;
   int settleYardstick = settled;

   static constexpr int settled = 40;
};

// Runs the rounds, sets the counters and adds a line to the table that printTable() prints.
void alternate( benchmark::State & state, std::string const & name, Round const & round,
                Goal goal = {} );
// A line that is no ratio to look-ups: its value, in the column of the ratio.
void addLine( std::string const & name, double value, Goal goal = {} );
void printTable();

double median( std::vector< double > values );

template < class F >
double secondsOf( F && run, int passes ) {
   auto const start = std::chrono::steady_clock::now();
   for ( int i = 0; i < passes; ++i ) {
      run();
   }
   return std::chrono::duration< double >( std::chrono::steady_clock::now() - start ).count();
}

} // namespace Bench
