#include "mrp/platform/dovr/ReviewTimer.h"

#include "mrp/platform/dovr/Microsecond.h"

#include <algorithm>

namespace Dovr {

ReviewTimer::ReviewTimer( Korv::Clock::Reactor & clockReactor, float fillInterval, U32 maxCredits,
                          float minDelay, float maxDelay )
   : clockReactor_( clockReactor ), fillInterval_( fillInterval ), maxCredits_( maxCredits ),
     minDelay_( minDelay ), maxDelay_( maxDelay ) {}

void ReviewTimer::doUpdateNextReview() {
   Seconds review = clockReactor_.clock().now() + minDelay_;
   if ( credits() == 0 ) {
      review = std::max( review, fillFrom_ + fillInterval_ );
   }
   timeMinIs( review );
}

void ReviewTimer::timeMinIs( Seconds time ) {
   clockReactor_.timeMinIs( time == Korv::never ? time : toMicrosecond( time ) );
}

void ReviewTimer::lastReviewIs( Seconds time ) {
   lastReview_ = time;
   fillUntil( time );
   if ( credits_ == maxCredits_ ) {
      fillFrom_ = time;
   }
   if ( credits_ > 0 ) {
      --credits_;
   }
}

U32 ReviewTimer::credits() {
   fillUntil( clockReactor_.clock().now() );
   return credits_;
}

void ReviewTimer::fillIntervalIs( float fillInterval ) {
   fillUntil( clockReactor_.clock().now() );
   fillInterval_ = fillInterval;
}

void ReviewTimer::maxCreditsIs( U32 maxCredits ) {
   Seconds const now = clockReactor_.clock().now();
   fillUntil( now );
   if ( credits_ == maxCredits_ ) {
      fillFrom_ = now;
   }
   maxCredits_ = maxCredits;
   credits_ = std::min( credits_, maxCredits );
}

void ReviewTimer::fillUntil( Seconds time ) {
   while ( credits_ < maxCredits_ && fillFrom_ + fillInterval_ <= time + microsecond ) {
      fillFrom_ = toMicrosecond( fillFrom_ + fillInterval_ );
      ++credits_;
   }
}

} // namespace Dovr
