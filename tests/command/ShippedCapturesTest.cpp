// The captures of examples/captures, and what `mrp replay` makes of them.
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace CommandTest {

namespace {

using nlohmann::json;
using ::testing::HasSubstr;

// Tests run in the root of the repository.
std::string const folder = "examples/captures/";

json replayed( std::string const & application, std::string const & capture ) {
   auto const outcome =
      mrp( { "replay", "--application", application, "-j", "Ethernet1=" + folder + capture } );
   EXPECT_EQ( outcome.status, 0 );
   EXPECT_EQ( outcome.err, "" );
   return outcome.json();
}

TEST( ShippedCapturesTest, TellOfVlansAndStreamsThatComeAndGo ) {
   json const vlans = replayed( "mvrp", "vlans.pcap" );
   std::string told;
   for ( auto const & indication : vlans["indications"] ) {
      if ( indication["time"] < 10 ) {
         told +=
            ( indication["kind"] == "join" ? " +" : " -" ) + indication["key"].get< std::string >();
      }
   }
   EXPECT_EQ( told, " +10 +11 +12 +13 -12 -13 +100 -11" );
   EXPECT_EQ( vlans["transmitted"][0]["time"], 2.0 ); // the answer to the LeaveAll

   json const streams = replayed( "msrp", "streams.pcap" );
   EXPECT_EQ( streams["counters"]["numOfMalformedPkts"], 0 );
   EXPECT_EQ( streams["attributes"].size(), 4u ); // one of each type
   auto const text = mrp( { "replay", "--application", "msrp", folder + "streams.pcap" } ).out;
   EXPECT_THAT( text, HasSubstr( "   4.000000  eth0  join   Listener 02:00:00:00:00:66:00:00 "
                                 "JoinMt (Asking Failed)\n" ) );
   EXPECT_THAT( text, HasSubstr( "1 (insufficient bandwidth)" ) );
   EXPECT_THAT( text, ::testing::Not( HasSubstr( "not readable" ) ) );
}

TEST( ShippedCapturesTest, AreWhatTheirScriptMakes ) {
   auto const directory = ::testing::TempDir();
   std::string const script = "python3 " + folder + "make_captures.py ";
   ASSERT_EQ( std::system( ( script + directory ).c_str() ), 0 );
   for ( std::string const name : { "vlans.pcap", "streams.pcap" } ) {
      auto const shipped = Command::readCapture( folder + name );
      auto const made = Command::readCapture( directory + "/" + name );
      ASSERT_EQ( shipped.frames.size(), made.frames.size() );
      for ( std::size_t i = 0; i < made.frames.size(); ++i ) {
         EXPECT_EQ( shipped.frames[i].time, made.frames[i].time );
         EXPECT_EQ( shipped.frames[i].bytes, made.frames[i].bytes );
      }
   }
}

} // namespace

} // namespace CommandTest
