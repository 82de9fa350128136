#include "mrp/platform/dovr/ReviewTimer.h"

#include "mrp/platform/memory/VirtualActivity.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <vector>

namespace Dovr {
namespace {

using Times = std::vector< Seconds >;

// A machine that reviews.
class ReviewTimerTest : public testing::Test {
 protected:
   void handleReview() {
      EXPECT_FALSE( timer.reviewPending() );
      reviews.push_back( Korv::now() );
      timer.lastReviewIs( Korv::now() );
      if ( askAgain ) {
         timer.doUpdateNextReview();
      }
   }
   // The credits that are left by a review asked for then.
   U32 creditsAfterReview( Seconds askedAt ) {
      activity.advanceTo( askedAt );
      timer.doUpdateNextReview();
      EXPECT_TRUE( timer.reviewPending() );
      activity.advanceBy( 0.1 );
      return timer.credits();
   }

   Memory::VirtualActivity activity;
   Platform::Timer review{ [this] { handleReview(); }, Korv::Clock::Rank::review };
   ReviewTimer timer{ review, 1.0f, 4, 0.1f, 0.1f };
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
   EXPECT_EQ( creditsAfterReview( 0 ), 3u );
   EXPECT_EQ( creditsAfterReview( 0.2 ), 2u );
   EXPECT_EQ( reviews.back(), 0.3 ); // though 0.2 + 0.1 is no 0.3
   EXPECT_EQ( creditsAfterReview( 0.4 ), 1u );
   activity.advanceTo( 1.0999 );
   EXPECT_EQ( timer.credits(), 1u );
   activity.advanceTo( 1.1 ); // a second after it fell below full, not after the last one spent
   EXPECT_EQ( timer.credits(), 2u );
   EXPECT_EQ( creditsAfterReview( 60 ), 3u ); // and the count starts anew with the next one spent
   activity.advanceTo( 61 );
   EXPECT_EQ( timer.credits(), 3u );
   activity.advanceTo( 61.1 );
   EXPECT_EQ( timer.credits(), 4u );
}

} // namespace
} // namespace Dovr
