// The rate of logs and what they look like, and traces as a user switches them.
#include "mrp/platform/korv/Log.h"

#include "mrp/platform/korv/LogSinks.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/TraceLevels.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include <gmock/gmock.h>

#include <regex>

namespace Korv {
namespace {

class Log : public ::testing::Test {
 protected:
   Log() {
      logSinkIs( logToStandardError );
      logRateIs( { 3, 2 } );
   }
   ~Log() override {
      logSinkIs( nullptr );
      logRateIs( {} );
   }
   // What so many messages write; T for the time.
   static std::string written( LogHandle & handle, int count ) {
      testing::internal::CaptureStderr();
      for ( int i = 0; i < count; ++i ) {
         if ( handle.okToLog() ) {
            handle.log( "text" );
         }
      }
      std::regex const time( "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}\\.[0-9]{3} " );
      return std::regex_replace( testing::internal::GetCapturedStderr(), time, "T " );
   }

   Memory::VirtualActivity activity;
   LogHandle one{ "ONE", 6, "%s", "", NoActionRequired, 0.0, 1.0, 0 };
   LogHandle other{ "OTHER", 6, "%s", "", NoActionRequired, 0.0, 1.0, 0 };
};

TEST_F( Log, aHandleHasABurstAndThenARateAndTellsOfWhatWasHeldBack ) {
   std::string const line = "T ONE: text\n", burst = line + line + line;
   EXPECT_EQ( written( one, 10 ), burst );
   EXPECT_EQ( written( other, 1 ), "T OTHER: text\n" ) << "a rate of its own";
   activity.advanceBy( 0.4 );
   EXPECT_EQ( written( one, 10 ), "" );
   activity.advanceBy( 0.2 );
   EXPECT_EQ( written( one, 1 ), "T ONE: 17 messages before this one were held back\n" + line );
   activity.advanceBy( 100 );
   EXPECT_EQ( written( one, 3 ), burst ) << "no more than a burst is saved up";
   EXPECT_EQ( written( one, 1 ), "" );
   Memory::VirtualActivity const another; // a clock that starts again
   EXPECT_EQ( written( one, 1 ), "T ONE: 1 messages before this one were held back\n" + line );
}

TEST( TraceLevels, areReadByHandle ) {
   TraceHelper one( "One" ), other( "Other" );
   std::array const handles{ &one, &other };
   traceLevelsAre( "Other/9,0-1,One/2,One/4-8", handles );
   EXPECT_EQ( one.levels(), 0x1f4u );
   EXPECT_EQ( other.levels(), 0x203u );
   traceLevelsAre( "One/3", handles );
   EXPECT_EQ( one.levels(), 0x8u ) << "these and no others";

   for ( char const * wrong : { "", "One", "One/", "a", "One/4-", "One/-8", "One/8-4", "One/10",
                                "One/a", "One/4,", ",One/4", "one/4", "One/4/5", "One/4 " } ) {
      EXPECT_THROW( traceLevelsAre( std::string( "Other/7," ) + wrong, handles ), RangeException )
         << wrong;
      EXPECT_EQ( one.levels(), 0x8u );
      EXPECT_EQ( other.levels(), 0x203u );
   }
}

} // namespace
} // namespace Korv
