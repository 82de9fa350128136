// Numbers that look random and are the same for the same seed, on every machine (splitmix64).
#pragma once

#include "tests/support/Values.h"

#include <initializer_list>

namespace TestSupport {

class Random {
 public:
   explicit Random( U64 seed ) : state_( seed ) {}

   U64 next() {
      U64 z = state_ += 0x9e37'79b9'7f4a'7c15;
      z = ( z ^ ( z >> 30 ) ) * 0xbf58'476d'1ce4'e5b9;
      z = ( z ^ ( z >> 27 ) ) * 0x94d0'49bb'1331'11eb;
      return z ^ ( z >> 31 );
   }
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
   U64 state_;
};

} // namespace TestSupport
