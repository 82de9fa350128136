// The captures of examples/captures, and what `mrp replay` makes of them.
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <set>

namespace CommandTest {

namespace {

using nlohmann::json;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Tests run in the root of the repository.
std::string const folder = "examples/captures/";

json replayed( std::string const & application, std::string const & capture ) {
   auto const outcome =
      mrp( { "replay", "--application", application, "-j", "Ethernet1=" + folder + capture } );
   EXPECT_EQ( outcome.status, 0 ) << outcome.err;
   EXPECT_EQ( outcome.err, "" );
   return outcome.json();
}

// Those of one kind before `end`, as "time key".
std::vector< std::string > indications( json const & document, std::string const & kind,
                                        double end ) {
   std::vector< std::string > lines;
   for ( auto const & indication : document["indications"] ) {
      if ( indication["kind"] == kind && indication["time"] < end ) {
         lines.push_back( indication["time"].dump() + " " +
                          indication["key"].get< std::string >() );
      }
   }
   return lines;
}

TEST( ShippedCapturesTest, VlansComeStayAndGo ) {
   json const document = replayed( "mvrp", "vlans.pcap" );
   EXPECT_EQ( document["application"], "MVRP" );
   EXPECT_THAT( indications( document, "join", 10 ),
                ElementsAre( "0.0 10", "0.0 11", "0.0 12", "0.0 13", "5.0 100" ) );
   EXPECT_THAT( indications( document, "leave", 10 ), ElementsAre( "2.6 12", "2.6 13", "5.6 11" ) );
   EXPECT_EQ( document["indications"][0]["attributeEvent"], "joinMtEvent" );
   EXPECT_EQ( document["indications"][0]["value"], "000a" );
   // The answer to the LeaveAll, at once: In for all that were registered and rejoined.
   EXPECT_EQ( document["transmitted"][0]["time"], 2.0 );
   EXPECT_THAT( document["transmitted"][0]["frame"].get< std::string >(),
                ::testing::StartsWith( "0180c2000021"
                                       "020000000001"
                                       "88f5"
                                       "00"
                                       "0102" ) );
   std::vector< std::string > left;
   for ( auto const & attribute : document["attributes"] ) {
      EXPECT_EQ( attribute["registrarState"], "mrpIn" );
      EXPECT_EQ( attribute["committed"], true );
      left.push_back( attribute["key"] );
   }
   EXPECT_THAT( left, ElementsAre( "10", "100" ) );
}

TEST( ShippedCapturesTest, AStreamFailsAndItsListenersChange ) {
   json const document = replayed( "msrp", "streams.pcap" );
   std::set< int > types;
   for ( auto const & attribute : document["attributes"] ) {
      types.insert( attribute["attributeType"].get< int >() );
      if ( attribute["attributeType"] == 2 ) { // a stream id, and the failure code at the end
         EXPECT_EQ( attribute["key"], std::to_string( 0x0200'0000'0055'0002 ) );
         EXPECT_EQ( attribute["value"].get< std::string >().substr( 66 ), "01" );
      }
      if ( attribute["attributeType"] == 3 ) { // from Ready (2) to Asking Failed (1)
         EXPECT_EQ( attribute["value"].get< std::string >().substr( 16 ), "01000000" );
      }
   }
   EXPECT_THAT( types, ElementsAre( 1, 2, 3, 4 ) );
   EXPECT_THAT( indications( document, "leave", 10 ),
                ElementsAre( "3.6 " + std::to_string( 0x0200'0000'0055'0002 ) ) );
   EXPECT_EQ( document["counters"]["numOfMalformedPkts"], 0 );

   auto const text = mrp( { "replay", "--application", "msrp", folder + "streams.pcap" } ).out;
   EXPECT_THAT( text, HasSubstr( "   4.000000  eth0  join   Listener 02:00:00:00:00:66:00:00 "
                                 "JoinMt (Asking Failed)\n" ) );
   EXPECT_THAT( text, HasSubstr( "1 (insufficient bandwidth)" ) );
   EXPECT_THAT( text, ::testing::Not( HasSubstr( "not readable" ) ) );
   EXPECT_THAT( text, ::testing::Not( HasSubstr( "\x1b" ) ) );
}

// Members and their types do not depend on what there is.
TEST( ShippedCapturesTest, TheDocumentHasOneShape ) {
   for ( json const & document :
         { replayed( "mvrp", "vlans.pcap" ), replayed( "mvrp", "streams.pcap" ) } ) {
      std::vector< std::string > members;
      for ( auto const & [name, value] : document.items() ) {
         members.push_back( name );
      }
      EXPECT_THAT( members, ElementsAre( "application", "attributes", "counters", "indications",
                                         "interfaces", "transmitted" ) );
      EXPECT_EQ( document["counters"].size(), 10u );
      EXPECT_TRUE( document["attributes"].is_array() );
      EXPECT_TRUE( document["indications"].is_array() );
      EXPECT_TRUE( document["transmitted"].is_array() );
   }
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
