// What `mrp ring` prints, and how the environment switches traces.
#include "mrp/observability/RingSites.h"

#include "command/run/Observation.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <fstream>

namespace CommandTest {

namespace {

using ::testing::HasSubstr;

class RingTest : public CommandTest {
 protected:
   // A file of two levels, the process gone.
   std::string ringFile() const {
      Command::RunOptions options;
      options.application = Mrp::MVRP;
      options.interfaces = { "eth0" };
      options.ring = path( "ring" );
      Command::Observation const observation( Command::runSettings( options ) );
      Pelk::IntfId const intfId( "eth0" );
      Sornlog::log( Mrp::Ring::leaveAllEventIsTrue, intfId );
      Sornlog::log( Mrp::Ring::joinDiscarded, intfId, Korv::U8{ 3 }, Korv::U8{ 1 } );
      Sornlog::log( Mrp::Ring::flushOccurred );
      return *options.ring;
   }
};

TEST_F( RingTest, PrintsMessagesInOrderOfTime ) {
   std::string const file = ringFile();
   Outcome const all = mrp( "ring " + file );
   EXPECT_EQ( all.status, 0 );
   EXPECT_EQ( all.err, "" );
   EXPECT_THAT( all.out, ::testing::MatchesRegex(
                            "process [0-9]+, started .*\n\n"
                            ".*  8  leaveAllEvent is True for eth0\n"
                            ".*  4  Join was discarded by MSRP, interface: eth0, attrType: 3, "
                            "attrEvent: 1\n"
                            ".*  8  Flush! event occurred\n" ) );
   auto const records = mrp( "ring --json --level 2-4 " + file ).json().at( "records" );
   ASSERT_EQ( records.size(), 1u );
   EXPECT_EQ( records[0].at( "level" ), 4 );
   EXPECT_EQ( records[0].at( "message" ), Mrp::Ring::joinDiscarded.message );
   EXPECT_EQ( records[0].at( "arguments" ), nlohmann::json::parse( R"(["eth0", 3, 1])" ) );
}

TEST_F( RingTest, ADamagedFileIsReadAsFarAsItGoes ) {
   std::string const file = ringFile();
   using namespace Sornlog::Layout;
   std::size_t const record = recordsAt + std::size_t{ 4 } * 4096 * sizeof( Record );
   std::fstream( file, std::ios::in | std::ios::out | std::ios::binary )
      .seekp( static_cast< std::streamoff >( record + offsetof( Record, argumentBytes ) ) )
      .put( 1 );
   Outcome const outcome = mrp( "ring " + file );
   EXPECT_EQ( outcome.status, 1 );
   EXPECT_THAT( outcome.out, HasSubstr( "Flush! event occurred" ) );
   EXPECT_THAT( outcome.err, HasSubstr( "1 records left out that no process has written" ) );
}

TEST_F( RingTest, TracesAreSwitchedByTheEnvironment ) {
   {
      Variable const trace( "MRP_TRACE", "Mrp/8" );
      EXPECT_THAT( mrp( "script tests/scenarios/first-join-is-registered.json" ).err,
                   ::testing::ContainsRegex( "Mrp/8 [A-Za-z]+.cpp:[0-9]+ " ) );
   }
   Variable const wrong( "MRP_TRACE", "8" );
   EXPECT_THAT( mrp( "ring " + ringFile() ).err,
                HasSubstr( "mrp: MRP_TRACE: '8' is no HANDLE/LEVELS, such as Mrp/4-8\n" ) );
}

} // namespace

} // namespace CommandTest
