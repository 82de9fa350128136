#include "bench/Rounds.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace Bench {

namespace {

// The look-ups of more keys than these no processor learns by heart.
constexpr std::size_t learntKeys = 20'000;

template < int copy >
[[gnu::noinline]] Korv::U64 lookUpEach( LookUps::Map const & map, LookUps::Keys const & keys ) {
   Korv::U64 sum = copy; // else the compiler makes one function of all copies
   for ( Korv::U64 const key : keys ) {
      sum += map.find( key )->second;
   }
   return sum;
}

} // namespace

LookUps::LookUps( Keys inOrder ) : inOrder_( std::move( inOrder ) ) {
   Keys ascending = inOrder_;
   std::sort( ascending.begin(), ascending.end() );
   for ( Korv::U64 const key : ascending ) {
      map_.emplace( key, key );
   }
   double fastest = 0;
   for ( auto const loop :
         { lookUpEach< 0 >, lookUpEach< 1 >, lookUpEach< 2 >, lookUpEach< 3 >, lookUpEach< 4 >,
           lookUpEach< 5 >, lookUpEach< 6 >, lookUpEach< 7 > } ) {
      auto const run = [&] { benchmark::DoNotOptimize( loop( map_, inOrder_ ) ); };
      secondsOf( run, size() > learntKeys ? 1 : Round::settled );
      for ( int i = 0; i < 16; ++i ) {
         double const seconds = secondsOf( run, 1 );
         if ( !loop_ || seconds < fastest ) {
            loop_ = loop;
            fastest = seconds;
         }
      }
   }
}

LookUps ascendingLookUps( std::size_t count ) {
   std::vector< Korv::U64 > keys( count );
   std::iota( keys.begin(), keys.end(), Korv::U64{ 1 } );
   return LookUps( std::move( keys ) );
}

double median( std::vector< double > values ) {
   if ( values.empty() ) {
      return 0;
   }
   auto const middle = values.begin() + static_cast< std::ptrdiff_t >( values.size() / 2 );
   std::nth_element( values.begin(), middle, values.end() );
   return *middle;
}

namespace {

struct Line {
   std::string name;
   double nsPerAttribute = 0; // 0: none
   double nsPerLookUp = 0;
   double value = 0;
   Goal goal;
};

std::vector< Line > & lines() {
   static std::vector< Line > all;
   return all;
}

// A repetition takes the place of the one before.
void put( Line const & line ) {
   std::erase_if( lines(), [&]( Line const & held ) { return held.name == line.name; } );
   lines().push_back( line );
}

std::string number( double value, int digits ) {
   if ( value == 0 ) {
      return "-";
   }
   char text[32];
   std::snprintf( text, sizeof text, "%.*f", digits, value );
   return text;
}

} // namespace

void alternate( benchmark::State & state, std::string const & name, Round const & round,
                Goal goal ) {
   std::vector< double > work, yardstick, ratio;
   double const perPass = static_cast< double >( round.attributes ) * round.passes;
   for ( auto _ : state ) {
      round.prepare();
      secondsOf( round.work, round.settleWork );
      double const ours = secondsOf( round.work, round.passes );
      if ( !round.check() ) {
         state.SkipWithError( "it did not do what it is measured for" );
         return;
      }
      secondsOf( round.yardstick, round.settleYardstick );
      double const theirs = secondsOf( round.yardstick, round.passes );
      state.SetIterationTime( ours );
      work.push_back( ours / perPass * 1e9 );
      yardstick.push_back( theirs / perPass * 1e9 );
      ratio.push_back( ours / theirs );
   }
   Line const line{ name, median( work ), median( yardstick ), median( ratio ), goal };
   state.counters["ns_per_attribute"] = line.nsPerAttribute;
   state.counters["ns_per_look_up"] = line.nsPerLookUp;
   state.counters["look_ups"] = line.value;
   put( line );
}

void addLine( std::string const & name, double value, Goal goal ) {
   put( { name, 0, 0, value, goal } );
}

void printTable() {
   if ( lines().empty() ) {
      return;
   }
   std::size_t width = 0;
   for ( Line const & line : lines() ) {
      width = std::max( width, line.name.size() );
   }
   int const left = static_cast< int >( width );
   std::printf( "\n%-*s %9s %9s %9s %6s %6s\n", left, "", "ns per", "ns per", "", "", "" );
   std::printf( "%-*s %9s %9s %9s %6s %6s\n", left, "medians", "attribute", "look-up", "look-ups",
                "aim", "floor" );
   for ( Line const & line : lines() ) {
      std::printf( "%-*s %9s %9s %9s %6s %6s\n", left, line.name.c_str(),
                   number( line.nsPerAttribute, 1 ).c_str(), number( line.nsPerLookUp, 1 ).c_str(),
                   number( line.value, 2 ).c_str(), number( line.goal.aim, 1 ).c_str(),
                   number( line.goal.floor, 1 ).c_str() );
   }
}

} // namespace Bench
