#include "mrp/platform/linux/RealActivity.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace Linux {

RealActivity::RealActivity() { clock()->nowIs( monotonicTime() ); }

Seconds RealActivity::monotonicTime() {
   timespec t{};
   ::clock_gettime( CLOCK_MONOTONIC, &t );
   return static_cast< Seconds >( t.tv_sec ) + static_cast< Seconds >( t.tv_nsec ) / 1e9;
}

void RealActivity::runFor( Seconds duration ) {
   Seconds const end = monotonicTime() + duration;
   stopping_ = false;
   for ( ;; ) {
      clock()->nowIs( monotonicTime() );
      while ( !stopping_ && clock()->doFireNext() ) {
      }
      if ( stopping_ || clock()->now() >= end ) {
         return;
      }
      waitUntil( std::min( end, clock()->nextTime() ) );
   }
}

void RealActivity::waitUntil( Seconds time ) {
   timespec t{};
   t.tv_sec = static_cast< std::time_t >( time );
   // Rounded up: waking a nanosecond early would cost another round.
   t.tv_nsec =
      std::min( 999'999'999L, std::lround( std::ceil( ( time - std::floor( time ) ) * 1e9 ) ) );
   ::clock_nanosleep( CLOCK_MONOTONIC, TIMER_ABSTIME, &t, nullptr );
}

} // namespace Linux
