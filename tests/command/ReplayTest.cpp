// `mrp replay` from its arguments to its output.
#include "command/report/Words.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace CommandTest {

namespace {

using namespace TestSupport;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// "0.6 eth0 join 10"
std::vector< std::string > indications( Outcome const & outcome ) {
   std::vector< std::string > lines;
   auto const document = outcome.json();
   for ( auto const & indication : document["indications"] ) {
      lines.push_back(
         indication["time"].dump() + " " + indication["interface"].get< std::string >() + " " +
         indication["kind"].get< std::string >() + " " + indication["key"].get< std::string >() );
   }
   return lines;
}

std::vector< std::string > mvrpJson( std::vector< std::string > more ) {
   std::vector< std::string > arguments{ "replay", "--application", "mvrp", "--json" };
   arguments.insert( arguments.end(), more.begin(), more.end() );
   return arguments;
}

std::vector< Stamped > joinLeaveJoin( std::int64_t third ) {
   return { { start, mvrpFrame( vlans( 10, { New } ) ) },
            { start + 1000 * ms, mvrpFrame( vlans( 10, { Lv } ) ) },
            { start + third, mvrpFrame( vlans( 10, { JoinIn } ) ) } };
}

class ReplayTest : public CommandTest {};

TEST_F( ReplayTest, WhatIsDueAtTheTimeOfAFrameHappensBeforeIt ) {
   // The leave is due 0.6 s behind the Lv.
   auto const dueFirst = file( "due.pcap", pcap( joinLeaveJoin( 1600 * ms ) ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { dueFirst } ) ) ),
                ElementsAre( "0.0 eth0 join 10", "1.6 eth0 leave 10", "1.6 eth0 join 10" ) );
   auto const frameFirst = file( "frame.pcap", pcap( joinLeaveJoin( 1600 * ms - 1000 ) ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { frameFirst } ) ) ),
                ElementsAre( "0.0 eth0 join 10" ) );
}

TEST_F( ReplayTest, FramesOfOneTimeGoInTheOrderOfTheCapturesAndOfTheFile ) {
   auto const two = file( "two.pcap", pcap( { { start, mvrpFrame( vlans( 7, { New } ) ) },
                                              { start, mvrpFrame( vlans( 5, { New } ) ) } } ) );
   auto const one = file( "one.pcap", pcap( { { start, mvrpFrame( vlans( 6, { New } ) ) } } ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { "b=" + two, "a=" + one } ) ) ),
                ElementsAre( "0.0 b join 7", "0.0 b join 5", "0.0 a join 6" ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { "a=" + one, "b=" + two } ) ) ),
                ElementsAre( "0.0 a join 6", "0.0 b join 7", "0.0 b join 5" ) );
}

TEST_F( ReplayTest, TimesCountFromTheEarliestFrameOfAllCaptures ) {
   // The earliest is neither the first of its file nor of the first file, and is held back.
   Bytes const other = mvrpFrame().type( 0x0800 );
   auto const first = file( "a.pcap", pcap( { { start, mvrpFrame( vlans( 1, { New } ) ) } } ) );
   auto const second =
      file( "b.pcap", pcap( { { start + 250 * ms, mvrpFrame( vlans( 2, { New } ) ) },
                              { start - 500 * ms, other } } ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { "a=" + first, "b=" + second } ) ) ),
                ElementsAre( "0.5 a join 1", "0.75 b join 2" ) );
}

TEST_F( ReplayTest, NanosecondsAreExactAndComeOutAgain ) {
   // VLAN 9 answers the LeaveAll with an In.
   auto const capture = path( "c.pcap" );
   Command::CapturedFrame const frames[] = { { start, mvrpFrame( vlans( 9, { New } ) ) },
                                             { start + 123, mvrpFrame( vlanLeaveAll() ) } };
   Command::writeCapture( capture, frames );
   auto const outcome = mrp( mvrpJson( { "--out", path( "out/deep" ), "p1=" + capture } ) );
   ASSERT_EQ( outcome.status, 0 ) << outcome.err;
   auto const transmitted = outcome.json()["transmitted"];
   ASSERT_EQ( transmitted.size(), 1u );
   EXPECT_EQ( transmitted[0]["time"], 0.000000123 );

   auto const written = Command::readCapture( path( "out/deep/p1.pcap" ) );
   ASSERT_EQ( written.frames.size(), 1u );
   EXPECT_EQ( written.frames[0].time, start + 123 );
   EXPECT_EQ( Command::hexText( written.frames[0].bytes ), transmitted[0]["frame"] );
   EXPECT_TRUE( written.warnings.empty() );
}

TEST_F( ReplayTest, PcapngIsReadToTheNanosecond ) {
   Bytes const frame = mvrpFrame( vlans( 9, { New } ) );
   ASSERT_EQ( frame.size(), 26u );
   auto const capture =
      file( "a.pcapng", fromHex( "0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000"
                                 "01000000 20000000 0100 0000 00000000" // Ethernet
                                 "0900 0100 09000000 00000000 20000000" // in steps of 10^-9 s
                                 "06000000 3c000000 00000000 01000000 02000000 1a000000 1a000000" +
                                 hex( frame ) + "0000 3c000000" ) );
   auto const read = Command::readCapture( capture ).frames;
   ASSERT_EQ( read.size(), 1u );
   EXPECT_EQ( read[0].time, ( 1ll << 32 ) + 2 );
   EXPECT_EQ( read[0].bytes, frame );
}

TEST_F( ReplayTest, AnInterfaceIsThereFromTheStartAlsoWhereItsCaptureIsEmpty ) {
   auto const empty = file( "empty.pcap", pcap( {} ) );
   auto const outcome =
      mrp( mvrpJson( { "--tail", "15.1", "--out", path( "out" ), "one=" + empty } ) );
   auto const document = outcome.json();
   EXPECT_EQ( document["interfaces"].dump(), R"([{"name":"one","received":0,"transmitted":1}])" );
   // Its LeaveAll, 10 to 15 s after the start; time 0 is then 0 in the file too.
   double const time = document["transmitted"][0]["time"];
   EXPECT_GE( time, 10 );
   EXPECT_LE( time, 15 );
   EXPECT_EQ( Command::readCapture( path( "out/one.pcap" ) ).frames.at( 0 ).time,
              std::llround( time * 10 ) * 100 * ms );
   // The source address counts up with the interfaces.
   auto const two = mrp( mvrpJson( { "--tail", "15.1", "one=" + empty, "two=" + empty } ) ).json();
   for ( auto const & frame : two["transmitted"] ) {
      EXPECT_EQ( frame["frame"].get< std::string >().substr( 12, 12 ),
                 frame["interface"] == "one" ? "020000000001" : "020000000002" );
   }
}

TEST_F( ReplayTest, TheFilterHoldsBackWhatIsNotTheApplications ) {
   auto const mixed =
      file( "mixed.pcap", pcap( { { start, mvrpFrame( vlans( 1, { New } ) ) },
                                  { start, mvrpFrame( vlans( 2, { New } ) ).type( 0x1234 ) },
                                  { start, mvrpFrame( vlans( 3, { New } ) ).to( 0x0180c200'0042 ) },
                                  { start, mvrpFrame( vlans( 4, { New } ) ).tag( 5 ) },
                                  { start, { 1, 2, 3 } } } ) );
   auto const document = mrp( mvrpJson( { mixed } ) ).json();
   EXPECT_EQ( document["interfaces"][0]["received"], 2 );
   EXPECT_EQ( document["counters"]["numOfPktsProcessed"], 2 );
   auto const text = mrp( { "replay", "--application", "MVRP", mixed } );
   EXPECT_THAT( text.out, ::testing::ContainsRegex( "held back by the filter\neth0 +2 +0 +3\n" ) );
   EXPECT_THAT( text.out, HasSubstr( "tagged with VLAN 5; VLAN 4 New" ) );

   EXPECT_THAT( indications( mrp( mvrpJson( { "--ethertype", "0x1234", mixed } ) ) ),
                ElementsAre( "0.0 eth0 join 2" ) );
   EXPECT_THAT( indications( mrp( mvrpJson( { "--address", "01:80:C2:00:00:42", mixed } ) ) ),
                ElementsAre( "0.0 eth0 join 3" ) );
   EXPECT_EQ(
      mrp( mvrpJson( { "--ethertype", "4660", mixed } ) ).json()["interfaces"][0]["received"], 1 );
}

TEST_F( ReplayTest, AttributesAreThoseOfTheMachinesSorted ) {
   auto const b = file( "b.pcap", pcap( { { start, mvrpFrame( vlans( 9, { New, New } ) ) } } ) );
   auto const a = file( "a.pcap", pcap( { { start, mvrpFrame( vlans( 4094, { JoinIn } ) ) } } ) );
   auto const attributes = [&]( std::string const & tail ) {
      return mrp( mvrpJson( { "--tail", tail, "b=" + b, "a=" + a } ) ).json()["attributes"];
   };
   // The database takes them in 0.1 s later.
   auto const pending = attributes( "0" );
   ASSERT_EQ( pending.size(), 3u );
   EXPECT_EQ( pending[0].dump(),
              R"({"applicantState":"mrpAnxiousObserver","attributeType":1,"committed":false,)"
              R"("interface":"a","key":"4094","registrarState":"mrpIn","value":"0ffe"})" );
   EXPECT_EQ( pending[1]["key"], "9" );
   EXPECT_EQ( pending[2]["key"], "10" );
   auto const committed = attributes( "0.1" );
   ASSERT_EQ( committed.size(), 3u );
   EXPECT_EQ( committed[2]["committed"], true );
}

TEST_F( ReplayTest, ADamagedCaptureGivesItsFramesUpToThere ) {
   Bytes bytes = pcap( joinLeaveJoin( 1600 * ms ) );
   bytes.resize( bytes.size() - 5 );
   auto const cut = mrp( mvrpJson( { file( "cut.pcap", bytes ) } ) );
   EXPECT_EQ( cut.status, 0 );
   EXPECT_EQ( cut.json()["interfaces"][0]["received"], 2 );
   EXPECT_THAT( cut.err, ::testing::StartsWith( "mrp: warning: " + path( "cut.pcap" ) ) );
   EXPECT_THAT( cut.err, HasSubstr( "cut in the middle" ) );
   EXPECT_EQ( std::ranges::count( cut.err, '\n' ), 1 );
}

TEST_F( ReplayTest, WhatIsWrongIsSaidInOneLine ) {
   auto const good = file( "good.pcap", pcap( {} ) );
   auto const wifi = file( "wifi.pcap", pcap( {}, 105 ) );
   auto const old = file( "old.pcap", pcap( { { 0, mvrpFrame() } } ) );
   auto const now = file( "now.pcap", pcap( { { start, mvrpFrame() } } ) );
   auto const text = file( "text", { 'h', 'e', 'l', 'l', 'o' } );
   struct Case {
      std::vector< std::string > arguments;
      std::string words;
   };
   Case const cases[] = {
      { {}, "subcommand" },
      { { "rewind" }, "no subcommand 'rewind'" },
      { { "replay", good }, "--application" },
      { { "replay", "--application", "mvrp" }, "CAPTURE" },
      { { "replay", "--application", "gvrp", good }, "mvrp or msrp" },
      { mvrpJson( { good, good } ), "interface eth0" },
      { mvrpJson( { "=" + good } ), "NAME=FILE" },
      { mvrpJson( { "--tail", "-1", good } ), "--tail: '-1'" },
      { mvrpJson( { "--tail", "1e", good } ), "--tail: '1e'" },
      { mvrpJson( { "--ethertype", "65536", good } ), "--ethertype: '65536'" },
      { mvrpJson( { "--ethertype", "88f5", good } ), "--ethertype: '88f5'" },
      { mvrpJson( { "--address", "01:80:c2:00:00", good } ), "no MAC address" },
      { mvrpJson( { "--watch", good } ), "--watch" },
      { mvrpJson( { path( "missing" ) } ), path( "missing" ) + ": No such file" },
      { mvrpJson( { text } ), text + ": not a capture" },
      { mvrpJson( { "a=" + good, "b=" + wifi } ), wifi + ": link type IEEE802_11" },
      { mvrpJson( { "a=" + good, "b=" + old, "c=" + now } ), "19675 days" },
      { mvrpJson( { "--out", path( "" ), "good=" + good } ), "would be overwritten" },
      { mvrpJson( { "--out", text, good } ), text + ": " },
   };
   for ( Case const & wrong : cases ) {
      expectRefused( mrp( wrong.arguments ), wrong.words );
   }
   for ( char const * const asked : { "-h", "--help", "--version" } ) {
      EXPECT_EQ( mrp( { asked } ).status, 0 );
   }
   EXPECT_THAT( mrp( { "replay", "-h" } ).out, HasSubstr( "--ethertype" ) );
}

} // namespace

} // namespace CommandTest
