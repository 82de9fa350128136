// Paces reviews: a few at once, and then one as credits come back.
#pragma once

#include "mrp/platform/korv/Clock.h"

namespace Dovr {

using Korv::Seconds;
using Korv::U32;

// Arms a timer of the plain clock; that timer's onTime is the review. Owned by the machine that
// reviews and owns the timer.
//
// Its settings are floats of seconds; times are computed in doubles and armed in whole
// microseconds, so that a delay of 0.1 is one.
//
// A full stock of `maxCredits` at the start. Each finished review (`lastReviewIs`) spends one;
// while fewer than the full stock are there, one comes back every `fillInterval`, counted from when
// the stock fell below full. A review comes `minDelay` after it is asked for, or with the next
// credit where that is later and none is left.
class ReviewTimer : public Korv::PtrInterface {
 public:
   // `maxDelay` is the latest that the caller would have a review while credits last; there is
   // nothing here that could make one later than `minDelay`.
   ReviewTimer( Korv::Clock::Reactor & clockReactor, float fillInterval, U32 maxCredits,
                float minDelay, float maxDelay );

   // Asked for and not yet come.
   bool reviewPending() const { return clockReactor_.timeMin() != Korv::never; }
   // Asks for one.
   void doUpdateNextReview();
   // The least time of the next firing, outside of all credits: a review that could not be
   // finished is tried again then.
   void timeMinIs( Seconds time );

   // A review has been finished. `never` until the first.
   Seconds lastReview() const { return lastReview_; }
   void lastReviewIs( Seconds time );

   U32 credits();

   float fillInterval() const { return fillInterval_; }
   U32 maxCredits() const { return maxCredits_; }
   float minDelay() const { return minDelay_; }
   float maxDelay() const { return maxDelay_; }
   void fillIntervalIs( float fillInterval );
   void maxCreditsIs( U32 maxCredits );
   void minDelayIs( float minDelay ) { minDelay_ = minDelay; }
   void maxDelayIs( float maxDelay ) { maxDelay_ = maxDelay; }

 private:
   void fillUntil( Seconds time );

   Korv::Clock::Reactor & clockReactor_;
   float fillInterval_;
   U32 maxCredits_;
   float minDelay_;
   float maxDelay_;

   U32 credits_ = maxCredits_;
   Seconds fillFrom_ = 0; // while the stock is not full: since then the next credit is under way
   Seconds lastReview_ = Korv::never;
};

} // namespace Dovr
