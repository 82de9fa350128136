// `mrp script`: what is wrong with a script, and what the files of tests/scenarios do not show.
#include "command/report/Words.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <fstream>

namespace CommandTest {

namespace {

using namespace TestSupport;
using nlohmann::json;
using ::testing::HasSubstr;

// Something of everything. What is sent goes into one frame.
constexpr char const * good = R"({
   "application": "MSRP", "mac": "01:80:c2:00:00:0e", "etype": "0x22ea",
   "bridgeMac": "02:00:00:00:00:ff", "standby": false, "until": "0.5",
   "interfaces": {"Ethernet1": {"mac": null, "mtu": 1500}},
   "config": {"mrpFlooding": false, "intfLeaveTime": {"Ethernet1": 1}},
   "joinRefusals": [["Ethernet1", 1, 5]],
   "preload": [
      {"intf": "Ethernet1", "type": "4", "key": 6, "value": "06030002",
       "applicant": "mrpQuietActive", "registrar": "mrpMt"},
      {"intf": "Ethernet1", "type": 2, "key": "0x8000000000000001", "applicant": "5",
       "registrar": 0},
      {"intf": "Ethernet1", "type": 2, "key": 18446744073709551615, "applicant": 5, "registrar": 2}],
   "steps": [
      {"at": 0, "op": "enable", "intf": "Ethernet1"},
      {"at": 0.01, "op": "rx", "intf": "Ethernet1", "frame": "0180c200000e 020000000099 22ea 0000"},
      {"at": 0.05, "op": "send", "intf": "Ethernet1", "type": 1, "event": 0, "value": {
         "talkerAdvertise": {}}},
      {"at": 0.05, "op": "send", "intf": "Ethernet1", "type": 2, "event": "newEvent", "value": {
         "talkerFailed": {"streamId": "0x8000000000000001", "dmac": "91:e0:f0:00:0e:80",
            "vlanId": 2, "maxFrameSize": 1000, "maxIntervalFrames": 3, "priority": 5, "rank": true,
            "accumulatedLatency": 70000, "bridgeId": "0x8000020000000001", "failureCode": 19}}},
      {"at": 0.05, "op": "send", "intf": "Ethernet1", "type": 3, "event": 0, "value": {
         "listenerVector": {"streamId": 7, "listenerEvent": "readyFailed"}}},
      {"at": 0.05, "op": "send", "intf": "Ethernet1", "type": 3, "event": 0, "value": {
         "listenerVector": {"streamId": 8, "listenerEvent": 1}}},
      {"at": 0.05, "op": "send", "intf": "Ethernet1", "type": 4, "event": 0, "value": {
         "domainVector": {"srClassId": 5, "srClassPriority": 3, "srClassVID": 4094}}},
      {"at": 0.2, "op": "config", "attribute": "leaveTime", "value": 1},
      {"at": 0.2, "op": "config", "attribute": "intfLeaveTime", "intf": "Ethernet1", "value": 1},
      {"at": 0.3, "op": "role", "port": "Ethernet1", "msti": "Cist", "stpi": "Mst", "role": 1},
      {"at": 0.3, "op": "stpMode", "mode": -1, "native": {"Ethernet1": 7}, "vlans": [1, 7]},
      {"at": 0.4, "op": "cleanUp", "intf": "Ethernet1"},
      {"at": 0.4, "op": "endStandby"}]})";

// Of VLANs, with these steps behind the first.
json vlanScript( double until, json const & steps = json::array() ) {
   json script = json::parse( good );
   script.erase( "preload" );
   script["application"] = "MVRP";
   script["mac"] = "01:80:c2:00:00:21";
   script["etype"] = 0x88f5;
   script["until"] = until;
   script["steps"].erase( script["steps"].begin() + 1, script["steps"].end() );
   script["steps"].insert( script["steps"].end(), steps.begin(), steps.end() );
   return script;
}

class ScriptTest : public CommandTest {
 protected:
   Outcome run( std::string const & text, Lines const & options = { "--json" } ) const {
      Lines arguments{ "script", file( "script.json", text ) };
      arguments.insert( arguments.end(), options.begin(), options.end() );
      return mrp( arguments );
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
   std::ifstream in( "docs/scenario-scripts.md" ); // tests run in the root of the repository
   std::string const text( std::istreambuf_iterator< char >( in ), {} );
   auto const outcome = run( block( text, "```json" ), {} );
   EXPECT_EQ( outcome.err, "" );
   EXPECT_EQ( outcome.out, block( text, "prints\n\n```" ) );
}

TEST_F( ScriptTest, AFileThatIsNoScriptIsSaidToBeNone ) {
   std::pair< std::string, std::string > const files[] = {
      { "", "this is not JSON: parse error" },
      { "hello", "this is not JSON: parse error at line 1" },
      { "[]", "an object is needed, not a list" },
      { "{\"until\": 1, \"until\": 2}", "'until' stands twice in one object" },
      { std::string( 100'000, '[' ), "more than 16 deep" },
      { std::string( 33u << 20, ' ' ), "larger than 32 MiB" },
   };
   for ( auto const & [text, words] : files ) {
      expectError( run( text ), words );
   }
   for ( std::string const & name : { path( "missing" ), path( "" ) } ) {
      expectRefused( mrp( { "script", name } ), "mrp: " + name + ": " );
   }
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
      { "/etype", 65536, "etype: a whole number from 0 to 65535 is needed, not 65536" },
      { "/etype", 1.5, "etype: a whole number" },
      { "/standby", 1, "standby: true or false is needed, not 1" },
      { "/standby", true, "steps[2]: a participant in standby has nothing to send with" },
      { "/interfaces", manyInterfaces, "interfaces: 1025 of them" },
      { "/interfaces/a\nb", json::object(), "without control characters" },
      { "/config/leavetime", 1, "config.leavetime: there is no such attribute here, but timersE" },
      { "/joinRefusals/0", { "Ethernet1" }, "joinRefusals[0]: an interface, a type and a key" },
      { "/joinRefusals/0/2", "18446744073709551616", "joinRefusals[0][2]: a whole number" },
      { "/joinRefusals/0/2", 18446744073709551616.0, "joinRefusals[0][2]: a whole number" },
      { "/preload/0/applicant", "QA", "preload[0].applicant: one of mrpVeryAnxiousObserver to" },
      { "/preload/0/value", std::string( 132, '0' ), "preload[0].value: an attribute keeps" },
      { "/preload/0/value", { { "vlanVector", json::object() } }, "is not the attribute's type" },
      { "/steps/0/op", "start", "steps[0].op: there is no operation 'start', but enable" },
      { "/steps/1/frame", "0180c", "steps[1].frame: half a byte" },
      { "/steps/1/frame", std::string( 90, 'g' ), std::string( 39, 'g' ) + "..." },
      { "/steps/3/value/talker", json::object(), "steps[3].value.talker: there is no such kind" },
      { "/steps/3/value/talkerFailed/priority", 8, "priority: a whole number from 0 to 7" },
      { "/steps/3/value/talkerFailed/rank", 2, "rank: a whole number from 0 to 1" },
      { "/steps/7/intf", "Ethernet1", "steps[7].intf: leaveTime is the same for all interfaces" },
      { "/steps/8/intf", nullptr, "steps[8]: 'intf' is missing" },
      { "/steps/10/mode", 2147483648.0, "steps[10].mode: a whole number from -2147483648" },
      { "/steps/10/vlans/1", 4095, "steps[10].vlans[1]: a whole number from 1 to 4094" },
   };
   for ( Wrong const & wrong : wrongs ) {
      json changed = json::parse( good );
      json::json_pointer const place( wrong.place );
      if ( wrong.value.is_null() ) {
         changed[place.parent_pointer()].erase( place.back() );
      } else {
         changed[place] = wrong.value;
      }
      expectError( run( changed.dump() ), wrong.words );
   }
}

TEST_F( ScriptTest, WhatHasNoEffectIsWarnedOf ) {
   json const elsewhere = { { "at", 0 }, { "op", "enable" }, { "intf", "Ethernet7" } };
   json const late = { { "at", 5 }, { "op", "enable" }, { "intf", "Ethernet1" } };
   auto const outcome = run( vlanScript( 1, { elsewhere, elsewhere, late } ).dump() );
   EXPECT_EQ( outcome.status, 0 );
   std::string const name = path( "script.json" );
   EXPECT_EQ( outcome.err, "mrp: warning: " + name +
                              ": steps[1].intf: there is no interface 'Ethernet7' in this script\n"
                              "mrp: warning: " +
                              name + ": steps[3].at: the script ends before that\n" );
}

TEST_F( ScriptTest, ValuesHaveTheirFieldsByNameAndKeysTheir64Bits ) {
   json script = json::parse( good );
   script["steps"].erase( 11 ); // the cleaning up
   auto const outcome = run( script.dump() );
   ASSERT_EQ( outcome.status, 0 ) << outcome.err;
   auto const document = outcome.json();
   // Against the tests' own description of the wire.
   Talker const talker{ 0x8000'0000'0000'0001, 0x91e0f0000e80, 2, 1000, 3, 0xB0, 70'000 };
   Frame frame = msrpFrame( talkers( Talker{ 0, 0, 0, 0, 0, 0, 0 }, { New } ),
                            failedTalkers( { talker, 0x8000'0200'0000'0001, 19 }, { New } ),
                            listeners( 7, { { New, ReadyFailed }, { New, AskingFailed } } ),
                            domains( { 5, 3, 4094 }, { New } ) );
   EXPECT_EQ( document["transmitted"][0]["frame"],
              Command::hexText( frame.from( 0x0200'0000'00ff ).bytes() ) );
   EXPECT_EQ( document["attributeIndex"][1]["keys"].dump(),
              R"(["9223372036854775809","18446744073709551615"])" );
   EXPECT_EQ( document["attributes"][1]["key"], "9223372036854775809" );
   EXPECT_EQ( document["attributes"][1]["registrarState"], "mrpIn" );
}

// A reader that shares nothing with this system.
TEST_F( ScriptTest, TsharkReadsInTheCaptureWhatWasSent ) {
   if ( std::system( "tshark --version > /dev/null 2>&1" ) != 0 ) {
      GTEST_SKIP() << "tshark is not installed";
   }
   ASSERT_EQ( run( good, { "--out", path( "out" ) } ).status, 0 );
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
   std::string read;
   std::getline( std::ifstream( path( "read" ) ), read );
   EXPECT_EQ( read, "  1,2,3,4 1,1,2,1 0,0,0,0,0 3,1 "
                    "0x0000000000000000,0x8000000000000001,0x0000000000000007 "
                    "00:00:00:00:00:00,91:e0:f0:00:0e:80 0x0000,0x0002 0,1000 0,3 0,5 0,1 0,70000 "
                    "0x8000020000000001 19 5 3 4094" );
}

TEST_F( ScriptTest, TheSameScriptGivesTheSameResultAndCaptures ) {
   json script = vlanScript( 100 );
   auto const once = run( script.dump() );
   auto const again = run( script.dump(), { "-j", "--out", path( "out" ) } );
   EXPECT_EQ( again.out, once.out );
   auto const transmitted = once.json()["transmitted"];
   ASSERT_GT( transmitted.size(), 5u );
   EXPECT_NE( transmitted[0]["time"], 10 ); // chance has its part in it
   auto const written = Command::readCapture( path( "out/Ethernet1.pcap" ) ).frames;
   ASSERT_EQ( written.size(), transmitted.size() );
   EXPECT_EQ( Command::hexText( written[5].bytes ), transmitted[5]["frame"] );
   EXPECT_DOUBLE_EQ( static_cast< double >( written[5].time ) / 1e9, transmitted[5]["time"] );

   script["interfaces"]["Ethernet1/1"] = script["interfaces"]["Ethernet1"];
   EXPECT_THAT( run( script.dump(), { "--out", path( "out" ) } ).err,
                HasSubstr( "Ethernet1/1 cannot name a file" ) );
}

TEST_F( ScriptTest, StandbyTakesAllOperationsButASend ) {
   json script = json::parse( good );
   script["standby"] = true;
   auto & steps = script["steps"];
   steps.erase( steps.begin() + 2, steps.begin() + 7 );
   // A second end of standby makes all machines anew.
   steps.push_back( steps.back() );
   EXPECT_EQ( run( script.dump() ).status, 0 );
   steps.erase( steps.end() - 2, steps.end() );
   EXPECT_EQ( run( script.dump() ).json()["counters"], json::object() );
}

TEST_F( ScriptTest, ARunWithTooMuchToTellIsStopped ) {
   // A New indicates each time that it comes.
   Bytes const frame = mvrpFrame( vlans( 1, std::vector< Event >( 4094, New ) ) );
   json const rx = {
      { "at", 0.5 }, { "op", "rx" }, { "intf", "Ethernet1" }, { "frame", hex( frame ) } };
   expectError( run( vlanScript( 1, json( 130, rx ) ).dump() ),
                "by 0.500000 s there have been more than 500000" );
}

} // namespace

} // namespace CommandTest
