// `mrp script`: what is wrong with a script, and what the files of tests/scenarios do not show.
#include "command/report/Words.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

namespace CommandTest {

namespace {

using namespace TestSupport;
using nlohmann::json;
using ::testing::HasSubstr;

json scenario( std::string const & name ) {
   return json::parse( contents( "tests/scenarios/" + name + ".json" ) );
}
constexpr char const * everything = "fields-of-each-kind-go-into-a-frame";
constexpr char const * oneFrame = "first-join-is-registered";

class ScriptTest : public CommandTest {
 protected:
   Outcome run( std::string const & text, std::string const & options = "--json" ) const {
      return mrp( "script " + options + " " + file( "script.json", text ) );
   }
   Outcome run( json const & script, std::string const & options = "--json" ) const {
      return run( script.dump(), options );
   }
   void expectError( Outcome const & outcome, std::string const & words ) const {
      expectRefused( outcome, words );
      EXPECT_THAT( outcome.err, HasSubstr( "mrp: " + path( "script.json" ) + ": " ) );
   }
};

// What stands between the first line that begins with `from` and the next ``` behind it.
std::string block( std::string const & text, std::string const & from ) {
   std::size_t const start = text.find( '\n' + from + '\n' ) + from.size() + 2;
   return text.substr( start, text.find( "```", start ) - start );
}

TEST_F( ScriptTest, TheExampleOfTheDocumentationPrintsWhatStandsThere ) {
   std::string const text = contents( "docs/scenario-scripts.md" );
   auto const outcome = run( block( text, "```json" ), "" );
   EXPECT_EQ( outcome.err, "" );
   EXPECT_EQ( outcome.out, block( text, "prints\n\n```" ) );
}

TEST_F( ScriptTest, AFileThatIsNoScriptIsSaidToBeNone ) {
   std::pair< std::string, std::string > const files[] = {
      { "hello", "this is not JSON: parse error at line 1" },
      { "[]", "an object is needed, not a list" },
      { "{\"until\": 1, \"until\": 2}", "'until' stands twice in one object" },
      { std::string( 100'000, '[' ), "more than 16 deep" },
      { std::string( 33u << 20, ' ' ), "larger than 32 MiB" },
   };
   for ( auto const & [text, words] : files ) {
      expectError( run( text ), words );
   }
   expectRefused( mrp( "script " + path( "missing" ) ), "mrp: " + path( "missing" ) + ": " );
}

// Where something else is put into a good script, and what is then said.
struct Wrong {
   std::string place; // of the value, as a JSON pointer
   json value;        // null: the member is left out
   std::string words;
};

TEST_F( ScriptTest, EveryErrorNamesItsPlaceAndWhatWouldBeRight ) {
   json manyInterfaces;
   for ( int i = 0; i <= 1024; ++i ) {
      manyInterfaces["e" + std::to_string( i )] = { { "mac", nullptr }, { "mtu", nullptr } };
   }
   Wrong const wrongs[] = {
      { "/untill", 3, "untill: there is no such key here, but name" },
      { "/until", nullptr, ": 'until' is missing" },
      { "/until", 1e300, "until: a number from 0.0 to 8640000.0 is needed, not 1e+300" },
      { "/application", "GVRP", "application: MSRP, MVRP or MMRP is needed, not \"GVRP\"" },
      { "/mac", "01:80:c2:00:00", "mac: a MAC address such as" },
      { "/etype", 1.5, "etype: a whole number from 0 to 65535 is needed, not 1.5" },
      { "/standby", 1, "standby: true or false is needed, not 1" },
      { "/standby", true, "steps[2]: a participant in standby has nothing to send with" },
      { "/interfaces", manyInterfaces, "interfaces: 1025 of them" },
      { "/interfaces/a\nb", json::object(), "without control characters" },
      { "/config/leavetime", 1, "config.leavetime: there is no such attribute here, but timersE" },
      { "/joinRefusals/0", { "Ethernet1" }, "joinRefusals[0]: an interface, a type and a key" },
      { "/joinRefusals/0/2", "18446744073709551616", "joinRefusals[0][2]: a whole number" },
      { "/preload/0/applicant", "QA", "preload[0].applicant: one of mrpVeryAnxiousObserver to" },
      { "/preload/0/value", std::string( 132, '0' ), "preload[0].value: an attribute keeps" },
      { "/preload/0/value", { { "vlanVector", json::object() } }, "is not the attribute's type" },
      { "/steps/0/op", "start", "steps[0].op: there is no operation 'start', but enable" },
      { "/steps/1/frame", "0180c", "steps[1].frame: half a byte" },
      { "/steps/1/frame", std::string( 90, 'g' ), std::string( 39, 'g' ) + "..." },
      { "/steps/3/value/talkerFailed/priority", 8, "priority: a whole number from 0 to 7" },
      { "/steps/7/intf", "Ethernet1", "steps[7].intf: leaveTime is the same for all interfaces" },
      { "/steps/10/mode", 2147483648.0, "steps[10].mode: a whole number from -2147483648" },
      { "/steps/10/vlans/1", 4095, "steps[10].vlans[1]: a whole number from 1 to 4094" },
   };
   for ( Wrong const & wrong : wrongs ) {
      json changed = scenario( everything );
      json::json_pointer const place( wrong.place );
      if ( wrong.value.is_null() ) {
         changed[place.parent_pointer()].erase( place.back() );
      } else {
         changed[place] = wrong.value;
      }
      expectError( run( changed ), wrong.words );
   }
}

TEST_F( ScriptTest, WhatHasNoEffectIsWarnedOf ) {
   json script = scenario( oneFrame );
   script["steps"][1]["intf"] = "Ethernet7";
   script["steps"][2] = { { "at", 5 }, { "op", "enable" }, { "intf", "Ethernet1" } };
   auto const outcome = run( script );
   EXPECT_EQ( outcome.status, 0 );
   std::string const warning = "mrp: warning: " + path( "script.json" );
   EXPECT_EQ( outcome.err,
              warning + ": steps[1].intf: there is no interface 'Ethernet7' in this script\n" +
                 warning + ": steps[2].at: the script ends before that\n" );
}

// A reader that shares nothing with this system.
TEST_F( ScriptTest, TsharkReadsInTheCaptureWhatWasSent ) {
   if ( std::system( "tshark --version > /dev/null 2>&1" ) != 0 ) {
      GTEST_SKIP() << "tshark is not installed";
   }
   ASSERT_EQ( run( scenario( everything ), "--out " + path( "out" ) ).status, 0 );
   std::string command = "tshark -n -c 1 -r '" + path( "out/Ethernet1.pcap" ) +
                         "' -T fields -E separator=/s -e _ws.malformed -e _ws.expert.message";
   for ( std::string const field :
         { "attribute_type", "number_of_values", "three_packed_event", "four_packed_event",
           "stream_id", "stream_da", "vlan_id", "tspec_max_frame_size", "tspec_max_interval_frames",
           "priority", "rank", "accumulated_latency", "failure_bridge_id", "failure_code",
           "sr_class_id", "sr_class_priority", "sr_class_vid" } ) {
      command += " -e mrp-msrp." + field;
   }
   ASSERT_EQ( std::system( ( command + " > '" + path( "read" ) + "' 2> /dev/null" ).c_str() ), 0 );
   EXPECT_EQ( contents( path( "read" ) ),
              "  1,2,3,4 1,1,2,1 0,0,0,0,0 3,1 "
              "0x0000000000000000,0x8000000000000001,0x0000000000000007 "
              "00:00:00:00:00:00,91:e0:f0:00:0e:80 0x0000,0x0002 0,1000 0,3 0,5 0,1 0,70000 "
              "0x8000020000000001 19 5 3 4094\n" );
}

TEST_F( ScriptTest, TheSameScriptGivesTheSameResultAndCaptures ) {
   json script = scenario( oneFrame );
   script["until"] = 100;
   auto const once = run( script );
   auto const again = run( script, "-j --out " + path( "out" ) );
   EXPECT_EQ( again.out, once.out );
   auto const transmitted = once.json()["transmitted"];
   ASSERT_GT( transmitted.size(), 5u );
   EXPECT_NE( transmitted[0]["time"], 10 ); // chance has its part in it
   auto const written = Command::readCapture( path( "out/Ethernet1.pcap" ) ).frames;
   ASSERT_EQ( written.size(), transmitted.size() );
   EXPECT_EQ( Command::hexText( written[5].bytes ), transmitted[5]["frame"] );
   EXPECT_DOUBLE_EQ( static_cast< double >( written[5].time ) / 1e9, transmitted[5]["time"] );

   script["interfaces"]["Ethernet1/1"] = script["interfaces"]["Ethernet1"];
   EXPECT_THAT( run( script, "--out " + path( "out" ) ).err,
                HasSubstr( "Ethernet1/1 cannot name a file" ) );
}

TEST_F( ScriptTest, ARunWithTooMuchToTellIsStopped ) {
   // A New indicates each time that it comes.
   json script = scenario( oneFrame );
   json & steps = script["steps"];
   steps[1]["frame"] = hex( mvrpFrame( vlans( 1, std::vector< Event >( 4094, New ) ) ) );
   steps.insert( steps.end(), 130, json( steps[1] ) );
   expectError( run( script ), "by 0.250000 s there have been more than 500000" );
}

} // namespace

} // namespace CommandTest
