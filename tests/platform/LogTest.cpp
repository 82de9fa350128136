// The rate of logs, their sinks, and traces as a user switches them.
#include "mrp/platform/korv/Log.h"

#include "mrp/platform/korv/LogSinks.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/TraceLevels.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include <gmock/gmock.h>

namespace Korv {
namespace {

using ::testing::MatchesRegex;

LogHandle handleOf( char const * name ) {
   return { name, 6, "%s", "", NoActionRequired, 0.0, 1.0, 0 };
}

int logged_ = 0;

class LogTest : public ::testing::Test {
 protected:
   LogTest() {
      logged_ = 0;
      logSinkIs( []( LogHandle const &, std::string const & ) { ++logged_; } );
      logRateIs( { 3, 2 } );
   }
   ~LogTest() override {
      logSinkIs( nullptr );
      logRateIs( {} );
   }
   // How many of so many messages went out.
   static int out( LogHandle & handle, int count ) {
      int const before = logged_;
      for ( int i = 0; i < count; ++i ) {
         if ( handle.okToLog() ) {
            handle.log( "text" );
         }
      }
      return logged_ - before;
   }
   // What a sink writes.
   static std::string written( LogHandle & handle ) {
      testing::internal::CaptureStderr();
      EXPECT_TRUE( handle.okToLog() );
      handle.log( "text" );
      return testing::internal::GetCapturedStderr();
   }

   Memory::VirtualActivity activity_;
   LogHandle one_ = handleOf( "ONE" ), other_ = handleOf( "OTHER" );
};

TEST_F( LogTest, AHandleHasABurstAndThenARate ) {
   EXPECT_EQ( out( one_, 10 ), 3 );
   EXPECT_EQ( one_.suppressed(), 7u );
   EXPECT_EQ( out( other_, 2 ), 2 ) << "a rate of its own";
   activity_.advanceBy( 0.4 );
   EXPECT_EQ( out( one_, 10 ), 0 );
   activity_.advanceBy( 0.2 );
   EXPECT_EQ( out( one_, 1 ), 1 );
   EXPECT_EQ( one_.suppressed(), 0u ) << "the message has told";
   activity_.advanceBy( 100 );
   EXPECT_EQ( out( one_, 10 ), 3 ) << "no more than a burst is saved up";
   {
      Memory::VirtualActivity const another;
      EXPECT_EQ( out( one_, 10 ), 3 ) << "a clock that starts again";
   }
}

TEST_F( LogTest, ALineHasTimeAndHandleAndTellsOfTheOthers ) {
   std::string const time = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}\\.[0-9]{3} ";
   out( one_, 5 );
   activity_.advanceBy( 1 );
   logSinkIs( logToStandardError );
   EXPECT_THAT( written( one_ ),
                MatchesRegex( time + "ONE: 2 messages before this one were held back\n" + time +
                              "ONE: text\n" ) );
   EXPECT_THAT( written( one_ ), MatchesRegex( time + "ONE: text\n" ) );
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
      EXPECT_THROW( traceLevelsAre( wrong, handles ), RangeException ) << wrong;
      EXPECT_THROW( traceLevelsAre( std::string( "Other/7," ) + wrong, handles ), RangeException )
         << wrong;
      EXPECT_EQ( one.levels(), 0x8u );
      EXPECT_EQ( other.levels(), 0x203u );
   }
}

} // namespace
} // namespace Korv
