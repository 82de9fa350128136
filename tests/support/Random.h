// Numbers that look random and are the same for the same seed, on every machine.
#pragma once

#include "tests/support/Values.h"

#include <initializer_list>
#include <random>

namespace TestSupport {

class Random {
 public:
   explicit Random( U64 seed ) : numbers_( seed ) {}

   U64 next() { return numbers_(); }
   // From 0 up to, but not including, `end`.
   U32 below( std::size_t end ) { return static_cast< U32 >( next() % end ); }
   double between( double low, double high ) {
      return low + ( high - low ) * static_cast< double >( next() >> 11 ) * 0x1p-53;
   }
   bool chance( double probability ) { return between( 0, 1 ) < probability; }
   template < class T >
   T oneOf( std::initializer_list< T > choices ) {
      return choices.begin()[below( choices.size() )];
   }
   template < class T >
   T const & oneOf( std::vector< T > const & choices ) {
      return choices[below( choices.size() )];
   }

 private:
   std::mt19937_64 numbers_;
};

} // namespace TestSupport
