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

using Steps = std::vector< json >;

json step( double at, std::string const & operation, json const & more = json::object() ) {
   json all{ { "at", at }, { "op", operation } };
   all.update( more );
   return all;
}
json onPort( double at, std::string const & operation, json more = json::object() ) {
   more["intf"] = "Ethernet1";
   return step( at, operation, more );
}
json enable( double at = 0 ) { return onPort( at, "enable" ); }
json rx( double at, Bytes const & frame ) {
   return onPort( at, "rx", { { "frame", hex( frame ) } } );
}
json send( std::string const & kind, int type, json const & fields ) {
   return onPort( 0.05, "send",
                  { { "type", type }, { "event", 0 }, { "value", { { kind, fields } } } } );
}
json config( double at, std::string const & attribute, double value ) {
   return step( at, "config", { { "attribute", attribute }, { "value", value } } );
}
json role( double at, int number ) {
   return step(
      at, "role",
      { { "port", "Ethernet1" }, { "msti", "Cist" }, { "stpi", "Mst" }, { "role", number } } );
}

json mvrpScript( Steps const & steps = { enable() } ) {
   return { { "application", "MVRP" },
            { "mac", "01:80:c2:00:00:21" },
            { "etype", 0x88f5 },
            { "bridgeMac", "02:00:00:00:00:ff" },
            { "interfaces", { { "Ethernet1", { { "mac", nullptr }, { "mtu", 1500 } } } } },
            { "steps", steps },
            { "until", 1 } };
}
json msrpScript( Steps const & steps ) {
   json script = mvrpScript( steps );
   script.update(
      { { "application", "MSRP" }, { "mac", "01:80:c2:00:00:0e" }, { "etype", "0x22ea" } } );
   return script;
}

class ScriptTest : public CommandTest {
 protected:
   std::string textFile( std::string const & text ) const {
      return file( "script.json", Bytes( text.begin(), text.end() ) );
   }
   Outcome run( json const & script,
                std::vector< std::string > const & options = { "--json" } ) const {
      std::vector< std::string > arguments{ "script", textFile( script.dump() ) };
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
   auto const outcome = mrp( { "script", textFile( block( text, "```json" ) ) } );
   EXPECT_EQ( outcome.err, "" );
   EXPECT_EQ( outcome.out, block( text, "prints\n\n```" ) );
}

TEST_F( ScriptTest, AFileThatIsNoScriptIsSaidToBeNone ) {
   std::pair< std::string, std::string > const files[] = {
      { "", "this is not JSON: parse error" },
      { "hello", "this is not JSON: parse error at line 1" },
      { mvrpScript().dump().substr( 0, 100 ), "this is not JSON" },
      { "{\"until\": 1e999}", "this is not JSON" },
      { "[]", "an object is needed, not a list" },
      { "3", "an object is needed, not 3" },
      { "{\"until\": 1, \"until\": 2}", "'until' stands twice in one object" },
      { std::string( 100'000, '[' ), "more than 16 deep" },
      { std::string( 33u << 20, ' ' ), "larger than 32 MiB" },
   };
   for ( auto const & [text, words] : files ) {
      expectError( mrp( { "script", textFile( text ) } ), words );
   }
   for ( std::string const & name : { path( "missing" ), path( "" ) } ) {
      auto const outcome = mrp( { "script", name } );
      EXPECT_EQ( outcome.status, 2 );
      EXPECT_THAT( outcome.err, HasSubstr( "mrp: " + name + ": " ) );
   }
}

// Where something else is put into a good script, and what is then said.
struct Wrong {
   std::string place; // of the value, as a JSON pointer
   json value;        // null: the member is left out
   std::string words;
};

TEST_F( ScriptTest, EveryErrorNamesItsPlaceAndWhatWouldBeRight ) {
   json script = msrpScript( {
      enable(),
      rx( 0.1, msrpFrame() ),
      send( "talkerFailed", 2, { { "streamId", 1 } } ),
      config( 0.2, "leaveTime", 1 ),
      onPort( 0.2, "config", { { "attribute", "intfLeaveTime" }, { "value", 1 } } ),
      role( 0.3, 1 ),
      step( 0.3, "stpMode",
            { { "mode", -1 }, { "native", { { "Ethernet1", 7 } } }, { "vlans", { 1, 7 } } } ),
      send( "listenerVector", 3, { { "listenerEvent", "ready" } } ),
      step( 0.9, "endStandby" ),
   } );
   script["joinRefusals"] = Steps{ { "Ethernet1", 1, 5 } };
   script["preload"] = Steps{ { { "intf", "Ethernet1" },
                                { "type", 4 },
                                { "key", 6 },
                                { "applicant", "mrpQuietActive" },
                                { "registrar", "mrpMt" },
                                { "value", "06030002" } } };
   script["config"] = { { "mrpFlooding", false }, { "intfLeaveTime", { { "Ethernet1", 1 } } } };
   ASSERT_EQ( run( script ).status, 0 ) << run( script ).err;

   json manyInterfaces;
   for ( int i = 0; i <= 1024; ++i ) {
      manyInterfaces["e" + std::to_string( i )] = { { "mac", nullptr }, { "mtu", nullptr } };
   }
   Wrong const wrongs[] = {
      { "/untill", 3, "untill: there is no such key here, but name" },
      { "/until", nullptr, ": 'until' is missing" },
      { "/until", -1, "until: a number from 0.0 to 8640000.0 is needed, not -1" },
      { "/until", 1e300, "until: a number from 0.0 to 8640000.0 is needed, not 1e+300" },
      { "/application", "GVRP", "application: MSRP, MVRP or MMRP is needed, not \"GVRP\"" },
      { "/application", 1, "application: a text is needed, not 1" },
      { "/mac", "01:80:c2:00:00", "mac: a MAC address such as" },
      { "/etype", 65536, "etype: a whole number from 0 to 65535 is needed, not 65536" },
      { "/etype", "0x", "etype: a whole number" },
      { "/etype", "12 ", "etype: a whole number" },
      { "/etype", 1.5, "etype: a whole number" },
      { "/standby", 1, "standby: true or false is needed, not 1" },
      { "/interfaces", manyInterfaces, "interfaces: 1025 of them" },
      { "/interfaces/Ethernet1/speed", 5, "interfaces.Ethernet1.speed: there is no such key" },
      { "/interfaces/a\nb", json::object(), "without control characters" },
      { "/config/leavetime", 1, "config.leavetime: there is no such attribute here, but timersE" },
      { "/config/leaveTime", 1e10, "config.leaveTime: a number from" },
      { "/config/intfLeaveTime", 1, "config.intfLeaveTime: an object" },
      { "/joinRefusals/0", { "Ethernet1", 1 }, "joinRefusals[0]: an interface, a type and a key" },
      { "/joinRefusals/0/2", "18446744073709551616", "joinRefusals[0][2]: a whole number" },
      { "/joinRefusals/0/2", 18446744073709551616.0, "joinRefusals[0][2]: a whole number" },
      { "/preload/0/applicant", "QA", "preload[0].applicant: one of mrpVeryAnxiousObserver to" },
      { "/preload/0/applicant", 12, "preload[0].applicant: a whole number from 0 to 11" },
      { "/preload/0/value", std::string( 132, '0' ), "preload[0].value: an attribute keeps" },
      { "/preload/0/value/vlanVector", json::object(), "vlanVector is not the attribute's type" },
      { "/steps/0", 5, "steps[0]: an object is needed, not 5" },
      { "/steps/0/op", "start", "steps[0].op: there is no operation 'start', but enable" },
      { "/steps/0/about", "x", "steps[0].about: there is no such key here, but at, op, intf" },
      { "/steps/1/frame", "0180c", "steps[1].frame: half a byte" },
      { "/steps/1/frame", "0x80", "steps[1].frame: text of hexadecimal digits" },
      { "/steps/1/frame", std::string( 90, 'g' ), std::string( 39, 'g' ) + "..." },
      { "/steps/2/type", "vlanVector", "steps[2].type: one of invalidAttribute to domainVector" },
      { "/steps/2/event", "joinIn", "steps[2].event: one of newEvent to lvInternal" },
      { "/steps/2/queue", "Ethernet1", "steps[2].queue: a list" },
      { "/steps/2/value/talker", json::object(), "steps[2].value.talker: there is no such kind" },
      { "/steps/2/value/talkerFailed/stream", 1,
        "steps[2].value.talkerFailed.stream: there is no" },
      { "/steps/2/value/talkerFailed/priority", 8, "priority: a whole number from 0 to 7" },
      { "/steps/2/value/talkerFailed/rank", 2, "rank: a whole number from 0 to 1" },
      { "/steps/7/value/listenerVector/listenerEvent", 4, "listenerEvent: a whole number from 0" },
      { "/steps/3/attribute", "leave", "steps[3].attribute: there is no such attribute" },
      { "/steps/3/intf", "Ethernet1", "steps[3].intf: leaveTime is the same for all interfaces" },
      { "/steps/4/intf", nullptr, "steps[4]: 'intf' is missing" },
      { "/steps/5/role", "wrong", "steps[5].role: one of unknown to disabled" },
      { "/steps/6/mode", 2147483648.0, "steps[6].mode: a whole number from -2147483648" },
      { "/steps/6/vlans/1", 4095, "steps[6].vlans[1]: a whole number from 1 to 4094" },
   };
   for ( Wrong const & wrong : wrongs ) {
      json changed = script;
      json::json_pointer const place( wrong.place );
      if ( wrong.value.is_null() ) {
         changed[place.parent_pointer()].erase( place.back() );
      } else {
         if ( changed[place.parent_pointer()].is_string() ) {
            changed[place.parent_pointer()] = json::object();
         }
         changed[place] = wrong.value;
      }
      expectError( run( changed ), wrong.words );
   }
}

TEST_F( ScriptTest, WhatHasNoEffectIsWarnedOf ) {
   json elsewhere = enable();
   elsewhere["intf"] = "Ethernet7";
   json script = mvrpScript( { elsewhere, elsewhere, enable( 5 ) } );
   auto const outcome = run( script );
   EXPECT_EQ( outcome.status, 0 );
   std::string const name = path( "script.json" );
   EXPECT_EQ( outcome.err, "mrp: warning: " + name +
                              ": steps[0].intf: there is no interface 'Ethernet7' in this script\n"
                              "mrp: warning: " +
                              name + ": steps[2].at: the script ends before that\n" );
   EXPECT_EQ( outcome.json()["leaveAllTime"], json::array() );
}

TEST_F( ScriptTest, NumbersAsTextKeepTheir64Bits ) {
   json script = msrpScript( { enable() } );
   script["until"] = "0.5";
   script["preload"] = Steps{ { { "intf", "Ethernet1" },
                                { "type", "1" },
                                { "key", "0x8000000000000001" },
                                { "applicant", "5" },
                                { "registrar", 2 } },
                              { { "intf", "Ethernet1" },
                                { "type", 1 },
                                { "key", 18446744073709551615u },
                                { "applicant", 5 },
                                { "registrar", 2 } } };
   auto const document = run( script ).json();
   EXPECT_EQ( document["attributeIndex"][0]["keys"].dump(),
              R"(["9223372036854775809","18446744073709551615"])" );
   EXPECT_EQ( document["attributes"][0]["key"], "9223372036854775809" );
}

// The FirstValue of what goes out, against the tests' own description of the wire.
TEST_F( ScriptTest, ValuesHaveTheirFieldsByName ) {
   Talker const talker{ 0x8000'0000'0000'0001, 0x91e0f0000e80, 2, 1000, 3, 0xB0, 70'000 };
   json fields = { { "streamId", "0x8000000000000001" },
                   { "dmac", "91:e0:f0:00:0e:80" },
                   { "vlanId", 2 },
                   { "maxFrameSize", 1000 },
                   { "maxIntervalFrames", 3 },
                   { "priority", 5 },
                   { "rank", true },
                   { "accumulatedLatency", 70'000 } };
   json failed = fields;
   failed.update( { { "bridgeId", "0x8000020000000001" }, { "failureCode", 19 }, { "rank", 1 } } );
   struct Case {
      json step;
      Vector vector;
   };
   Case const cases[] = {
      { send( "talkerAdvertise", 1, fields ), talkers( talker, { New } ) },
      { send( "talkerFailed", 2, failed ),
        failedTalkers( { talker, 0x8000'0200'0000'0001, 19 }, { New } ) },
      { send( "listenerVector", 3, { { "streamId", 7 }, { "listenerEvent", 3 } } ),
        listeners( 7, { { New, ReadyFailed } } ) },
      { send( "domainVector", 4,
              { { "srClassId", 6 }, { "srClassPriority", 3 }, { "srClassVID", 4094 } } ),
        domains( { 6, 3, 4094 }, { New } ) },
      { send( "talkerAdvertise", 1, json::object() ),
        talkers( Talker{ 0, 0, 0, 0, 0, 0, 0 }, { New } ) },
   };
   for ( Case const & sent : cases ) {
      auto const document = run( msrpScript( { enable(), sent.step } ) ).json();
      ASSERT_EQ( document["transmitted"].size(), 2u ) << sent.step;
      Bytes const expected = msrpFrame( sent.vector ).from( 0x0200'0000'00ff );
      EXPECT_EQ( document["transmitted"][0]["frame"], Command::hexText( expected ) );
   }
}

TEST_F( ScriptTest, TheSameScriptGivesTheSameResultAndCaptures ) {
   json script = mvrpScript( { enable() } );
   script["until"] = 100;
   auto const once = run( script );
   auto const again = run( script, { "-j", "--out", path( "out" ) } );
   EXPECT_EQ( again.out, once.out );
   auto const transmitted = once.json()["transmitted"];
   ASSERT_GT( transmitted.size(), 5u );
   EXPECT_NE( transmitted[0]["time"], 10 ); // chance has its part in it
   auto const written = Command::readCapture( path( "out/Ethernet1.pcap" ) ).frames;
   ASSERT_EQ( written.size(), transmitted.size() );
   for ( std::size_t i = 0; i < written.size(); ++i ) {
      EXPECT_EQ( Command::hexText( written[i].bytes ), transmitted[i]["frame"] );
      EXPECT_DOUBLE_EQ( static_cast< double >( written[i].time ) / 1e9, transmitted[i]["time"] );
   }
   script["interfaces"]["Ethernet1/1"] = script["interfaces"]["Ethernet1"];
   EXPECT_EQ( run( script ).status, 0 );
   EXPECT_THAT( run( script, { "--out", path( "out" ) } ).err,
                HasSubstr( "Ethernet1/1 cannot name a file" ) );
}

TEST_F( ScriptTest, StandbyTakesAllOperationsButASend ) {
   json script =
      mvrpScript( { enable(), rx( 0.1, mvrpFrame() ), onPort( 0.1, "cleanUp" ),
                    config( 0.1, "leaveAllTime", 5 ), step( 0.1, "stpMode", { { "mode", 0 } } ),
                    role( 0.1, 3 ), onPort( 0.2, "disable" ), enable( 0.3 ) } );
   script["standby"] = true;
   auto const asleep = run( script );
   EXPECT_EQ( asleep.status, 0 ) << asleep.err;
   EXPECT_EQ( asleep.json()["counters"], json::object() );
   EXPECT_EQ( asleep.json()["parseContext"], json::object() );

   // A second end of standby makes all machines anew.
   script["steps"].push_back( step( 0.4, "endStandby" ) );
   script["steps"].push_back( step( 0.5, "endStandby" ) );
   EXPECT_EQ( run( script ).json()["leaveAllTime"][0]["seconds"] >= 5, true );

   script["steps"] = Steps{ send( "vlanVector", 1, json::object() ) };
   expectError( run( script ), "steps[0]: a participant in standby has nothing to send with" );
}

TEST_F( ScriptTest, ARunWithTooMuchToTellIsStopped ) {
   // A New indicates each time that it comes.
   json const frame = rx( 0.5, mvrpFrame( vlans( 1, std::vector< Event >( 4094, New ) ) ) );
   Steps steps = { enable() };
   for ( int i = 0; i < 130; ++i ) {
      steps.push_back( frame );
   }
   expectError( run( mvrpScript( steps ) ), "by 0.500000 s there have been more than 500000" );
}

} // namespace

} // namespace CommandTest
