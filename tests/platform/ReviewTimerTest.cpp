#include "mrp/platform/dovr/ReviewTimer.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include <gtest/gtest.h>

#include <vector>

namespace Dovr {
namespace {

using Times = std::vector< Seconds >;

// A machine that reviews: it finishes each review, unless it is told that it cannot.
class ReviewTimerTest : public testing::Test {
 protected:
   class Review : public Korv::Clock::Reactor {
    public:
      explicit Review( ReviewTimerTest & test )
         : Reactor( test.activity.clock(), Korv::Clock::Rank::review ), test_( test ) {}
      void onTime() override { test_.handleReview(); }

    private:
      ReviewTimerTest & test_;
   };

   void handleReview() {
      EXPECT_FALSE( timer.reviewPending() );
      reviews.push_back( Korv::now() );
      if ( clogged ) {
         timer.timeMinIs( Korv::now() + 0.1 );
         return;
      }
      timer.lastReviewIs( Korv::now() );
      if ( askAgain ) {
         timer.doUpdateNextReview();
      }
   }
   // Asks at the time, and has the review.
   void reviewAskedAt( Seconds time ) {
      activity.advanceTo( time );
      timer.doUpdateNextReview();
      EXPECT_TRUE( timer.reviewPending() );
   }

   Memory::VirtualActivity activity;
   Review review{ *this };
   ReviewTimer timer{ review, 1.0f, 4, 0.1f, 0.1f };
   bool clogged = false;
   bool askAgain = false;
   Times reviews;
};

TEST_F( ReviewTimerTest, reviewsFourTimesInARowAndThenWithEachCredit ) {
   askAgain = true;
   timer.doUpdateNextReview();
   activity.advanceTo( 4.5 );
   // The stock fell below full at 0.1: credits come back at 1.1, 2.1 and so on.
   EXPECT_EQ( reviews, ( Times{ 0.1, 0.2, 0.3, 0.4, 1.1, 2.1, 3.1, 4.1 } ) );
   EXPECT_EQ( timer.lastReview(), 4.1 );
}

TEST_F( ReviewTimerTest, creditsComeBackOneASecondUpToTheFullStock ) {
   for ( Seconds const time : { 0.0, 0.2, 0.4 } ) {
      reviewAskedAt( time );
      activity.advanceBy( 0.1 );
   }
   EXPECT_EQ( timer.credits(), 1u );
   activity.advanceTo( 1.0999 );
   EXPECT_EQ( timer.credits(), 1u );
   activity.advanceTo( 1.1 ); // a second after it fell below full, not after the last one spent
   EXPECT_EQ( timer.credits(), 2u );
   activity.advanceTo( 60 );
   EXPECT_EQ( timer.credits(), 4u );

   reviewAskedAt( 60 ); // and the count starts anew with the next one spent
   activity.advanceTo( 61 );
   EXPECT_EQ( timer.credits(), 3u );
   activity.advanceTo( 61.1 );
   EXPECT_EQ( timer.credits(), 4u );
}

TEST_F( ReviewTimerTest, reviewThatCannotBeFinishedComesAgainAndSpendsNothing ) {
   clogged = true;
   timer.doUpdateNextReview();
   activity.advanceTo( 0.95 );
   EXPECT_EQ( reviews.size(), 9u );
   EXPECT_EQ( reviews.back(), 0.9 );
   EXPECT_EQ( timer.credits(), 4u );
   EXPECT_EQ( timer.lastReview(), Korv::never );
}

TEST_F( ReviewTimerTest, setsItsFourNumbers ) {
   timer.minDelayIs( 0.5f );
   timer.maxDelayIs( 0.6f );
   timer.maxCreditsIs( 1 );
   timer.fillIntervalIs( 10 );
   EXPECT_EQ( timer.maxDelay(), 0.6f );
   askAgain = true;
   timer.doUpdateNextReview();
   activity.advanceTo( 25 );
   EXPECT_EQ( reviews, ( Times{ 0.5, 10.5, 20.5 } ) );

   timer.maxCreditsIs( 3 ); // the stock grows by what comes back, not at once
   EXPECT_EQ( timer.credits(), 0u );
}

// The sum of 0.2 and 0.1 is no 0.3, unless one takes care.
TEST_F( ReviewTimerTest, comesAtTheTimeThatOneWouldWrite ) {
   reviewAskedAt( 0.2 );
   activity.advanceTo( 0.3 );
   EXPECT_EQ( reviews, Times{ 0.3 } );
}

} // namespace
} // namespace Dovr
