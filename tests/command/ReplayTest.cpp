// `mrp replay` from its arguments to its output.
#include "command/report/Words.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

namespace CommandTest {

namespace {

using namespace TestSupport;
using Command::CapturedFrame;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

// Of one VLAN, so many seconds behind the start.
CapturedFrame heard( double time, U16 vlan, Event event = New ) {
   return { start + std::llround( time * 1e9 ), mvrpFrame( vlans( vlan, { event } ) ) };
}

Outcome replay( std::string const & words ) {
   return mrp( "replay --application mvrp --json " + words );
}

// "0.6 eth0 join 10"
Lines indications( std::string const & words ) {
   Lines lines;
   auto const document = replay( words ).json();
   for ( auto const & indication : document["indications"] ) {
      lines.push_back(
         indication["time"].dump() + " " + indication["interface"].get< std::string >() + " " +
         indication["kind"].get< std::string >() + " " + indication["key"].get< std::string >() );
   }
   return lines;
}

class ReplayTest : public CommandTest {};

TEST_F( ReplayTest, FramesGoInTheOrderOfTheirTimesThenOfTheCapturesThenOfTheFile ) {
   auto const a = "a=" + capture( "a.pcap", { heard( 0, 6 ) } );
   auto const b = "b=" + capture( "b.pcap", { heard( 0, 7 ), heard( 0, 5 ) } );
   EXPECT_THAT( indications( b + " " + a ),
                ElementsAre( "0.0 b join 7", "0.0 b join 5", "0.0 a join 6" ) );
   EXPECT_THAT( indications( a + " " + b ),
                ElementsAre( "0.0 a join 6", "0.0 b join 7", "0.0 b join 5" ) );
   // The earliest is neither the first of its file nor of the first file, and is held back.
   auto const c = "c=" + capture( "c.pcap", { heard( 0.25, 2 ),
                                              { start - 500 * ms, mvrpFrame().type( 0x0800 ) } } );
   EXPECT_THAT( indications( a + " " + c ), ElementsAre( "0.5 a join 6", "0.75 c join 2" ) );
}

TEST_F( ReplayTest, NanosecondsAreExactAndComeOutAgain ) {
   // VLAN 9 answers the LeaveAll with an In.
   auto const input =
      capture( "c.pcap", { heard( 0, 9 ), { start + 123, mvrpFrame( vlanLeaveAll() ) } } );
   auto const outcome = replay( "--out " + path( "out/deep" ) + " p1=" + input );
   ASSERT_EQ( outcome.status, 0 ) << outcome.err;
   auto const transmitted = outcome.json()["transmitted"];
   ASSERT_EQ( transmitted.size(), 1u );
   EXPECT_EQ( transmitted[0]["time"], 0.000000123 );
   auto const written = Command::readCapture( path( "out/deep/p1.pcap" ) ).frames;
   ASSERT_EQ( written.size(), 1u );
   EXPECT_EQ( written[0].time, start + 123 );
   EXPECT_EQ( Command::hexText( written[0].bytes ), transmitted[0]["frame"] );
}

TEST_F( ReplayTest, TheFilterHoldsBackWhatIsNotTheApplications ) {
   auto const mixed =
      capture( "mixed.pcap", { heard( 0, 1 ),
                               { start, mvrpFrame( vlans( 2, { New } ) ).type( 0x1234 ) },
                               { start, mvrpFrame( vlans( 3, { New } ) ).to( 0x0180c200'0042 ) },
                               { start, mvrpFrame( vlans( 4, { New } ) ).tag( 5 ) },
                               { start, { 1, 2, 3 } } } );
   EXPECT_EQ( replay( mixed ).json()["counters"]["numOfPktsProcessed"], 2 );
   auto const text = mrp( "replay --application MVRP " + mixed ).out;
   EXPECT_THAT( text, ::testing::ContainsRegex( "held back by the filter\neth0 +2 +0 +3\n" ) );
   EXPECT_THAT( text, HasSubstr( "tagged with VLAN 5; VLAN 4 New" ) );

   EXPECT_THAT( indications( "--ethertype 0x1234 " + mixed ), ElementsAre( "0.0 eth0 join 2" ) );
   EXPECT_THAT( indications( "--address 01:80:C2:00:00:42 " + mixed ),
                ElementsAre( "0.0 eth0 join 3" ) );
}

TEST_F( ReplayTest, ADamagedCaptureGivesItsFramesUpToThere ) {
   auto const cut = capture( "cut.pcap", { heard( 0, 10 ), heard( 1, 11 ), heard( 2, 12 ) } );
   fs::resize_file( cut, fs::file_size( cut ) - 5 );
   auto const outcome = replay( cut );
   EXPECT_EQ( outcome.status, 0 );
   EXPECT_EQ( outcome.json()["interfaces"][0]["received"], 2 );
   EXPECT_THAT( outcome.err, ::testing::MatchesRegex( "mrp: warning: " + cut +
                                                      ": cut in the middle [^\n]*\n" ) );
}

TEST_F( ReplayTest, TheShippedCapturesTellOfVlansAndStreamsThatComeAndGo ) {
   std::string told;
   for ( std::string const & line : indications( "examples/captures/vlans.pcap" ) ) {
      told += line.substr( line.find( "eth0" ) + 4 );
   }
   EXPECT_THAT( told, ::testing::StartsWith( " join 10 join 11 join 12 join 13 leave 12 leave 13 "
                                             "join 100 leave 11" ) );
   std::string const streams = "replay --application msrp examples/captures/streams.pcap";
   auto const document = mrp( streams + " --json" ).json();
   EXPECT_EQ( document["counters"]["numOfMalformedPkts"], 0 );
   EXPECT_EQ( document["attributes"].size(), 4u ); // one of each type
   auto const text = mrp( streams ).out;
   EXPECT_THAT( text, HasSubstr( "   4.000000  eth0  join   Listener 02:00:00:00:00:66:00:00 "
                                 "JoinMt (Asking Failed)\n" ) );
   EXPECT_THAT( text, ::testing::Not( HasSubstr( "not readable" ) ) );

   // They are what their script makes.
   std::string const make = "python3 examples/captures/make_captures.py " + path( "" );
   ASSERT_EQ( std::system( make.c_str() ), 0 );
   for ( std::string const name : { "vlans.pcap", "streams.pcap" } ) {
      std::string const compare = "cmp examples/captures/" + name + " " + path( name );
      EXPECT_EQ( std::system( compare.c_str() ), 0 );
   }
}

} // namespace

} // namespace CommandTest
