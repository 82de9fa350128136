// What `mrp run` is told, on the command line and in a file, and what it says to what is wrong.
#include "command/CommandError.h"
#include "command/StreamPath.h"
#include "command/run/RunConfig.h"
#include "command/run/RunSettings.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <unistd.h>

namespace CommandTest {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RunOptionsTest : public CommandTest {
 protected:
   std::string textFile( std::string const & name, std::string const & text ) const {
      return file( name, Bytes( text.begin(), text.end() ) );
   }
   Command::RunSettings settingsOfFile( std::string const & text ) const {
      return Command::runSettings( Command::readRunConfig( textFile( "run.toml", text ) ) );
   }
   // The one line that `mrp run` says; it has not come to the interfaces.
   static std::string refusal( std::vector< std::string > arguments ) {
      arguments.insert( arguments.begin(), "run" );
      Outcome const outcome = mrp( arguments );
      EXPECT_EQ( outcome.status, 2 );
      EXPECT_THAT( outcome.out, IsEmpty() );
      EXPECT_EQ( std::count( outcome.err.begin(), outcome.err.end(), '\n' ), 1 ) << outcome.err;
      return outcome.err;
   }
};

TEST_F( RunOptionsTest, WhatIsWrongOnTheCommandLineIsSaidInALine ) {
   struct {
      std::vector< std::string > arguments;
      char const * words;
   } const cases[] = {
      { { "eth0" }, "mrp: no application is given: --application mvrp or msrp" },
      { { "--application", "mvrp" }, "mrp: no interface is given to take part on" },
      { { "--application", "gvrp", "eth0" },
        "mrp: --application: 'gvrp' is no application: mvrp or msrp" },
      { { "--application", "mvrp", "eth0", "eth1", "eth0" },
        "mrp: the interface 'eth0' is given twice" },
      { { "--application", "mvrp", "no-such-interface" }, "mrp: no-such-interface: no such" },
      { { "--declare", "10,,20" }, "mrp: --declare: '' is no VLAN: 1 to 4094" },
      { { "--declare", "0" }, "mrp: --declare: '0' is no VLAN: 1 to 4094" },
      { { "--declare", "4094", "--declare", "1-4095" },
        "mrp: --declare: '4095' is no VLAN: 1 to 4094" },
      { { "--declare", "20-10" },
        "mrp: --declare: '20-10' is no range of VLANs: it runs backwards" },
      { { "--declare", "-5" }, "mrp: --declare: '' is no VLAN" },
      { { "--application", "msrp", "--declare", "5", "eth0" }, "mrp: declare is for mvrp" },
      { { "--application", "msrp", "--bridge", "eth0" }, "mrp: bridge is for mvrp" },
      { { "--application", "mvrp", "--listener", "02:00:00:00:00:01:00:07", "eth0" },
        "mrp: listener is for msrp" },
      { { "--listener", "02:00:00:00:00:01" },
        "mrp: --listener: '02:00:00:00:00:01' is no stream id, such as 02:00:00:00:00:01:00:07" },
      { { "--talker", "stream=02:00:00:00:00:01:00:07" }, "mrp: --talker: dest is missing" },
      { { "--talker", "dest=91:e0:f0:00:00:07,size=7" },
        "mrp: --talker: size: there is no 'size' here, but stream, dest, frame-size" },
      { { "--talker", "dest=91:e0:f0:00:00:07,dest=91:e0:f0:00:00:08" },
        "mrp: --talker: dest: it is there twice" },
      { { "--talker", "dest" }, "mrp: --talker: 'dest' is no NAME=VALUE" },
      { { "--talker", "frame-size=65536" },
        "mrp: --talker: frame-size: '65536' is no number that can stand here: 0 to 65535" },
      { { "--domain", "class=H,priority=1,vlan=2" },
        "mrp: --domain: class: 'H' is no SR class: A to G" },
      { { "--domain", "class=A,priority=8,vlan=2" }, "mrp: --domain: priority: '8' is no number" },
      { { "--application", "msrp", "eth0", "--talker",
          "stream=02:00:00:00:00:01:00:07,dest=91:e0:f0:00:00:07,frame-size=1,class=C" },
        "mrp: a talker is of class C, of which nothing is known: --domain class=C,priority=" },
      { { "--leave-time", "0" }, "mrp: --leave-time: '0' is too short" },
      { { "--leave-all-time", "soon" }, "mrp: --leave-all-time: 'soon' is no time in seconds" },
      { { "--application", "mvrp", "--leave-time", "10", "eth0" },
        "mrp: a leave-all-time of 10 s is no longer than the leave-time, 10 s" },
      { { "--leave-time", "1", "--leave-time", "2" }, "mrp: " },
      { { "--log", "file" },
        "mrp: --log: 'file' is no place for logs: errors, stderr, syslog or none" },
      { { "--socket", "tpc:7000" },
        "mrp: --socket: 'tpc:7000' is no address of a stream: a path, unix:PATH, tcp:PORT, "
        "tcp:HOST:PORT, or none" },
      { { "--socket", "tcp:0" }, "mrp: --socket: 'tcp:0' is no address" },
      { { "--socket", "" }, "mrp: --socket: '' is no address" },
      { { "--metrics", "localhost" },
        "mrp: --metrics: 'localhost' is neither PORT nor HOST:PORT, such as 9100" },
      { { "--metrics", "65536" }, "mrp: --metrics: '65536' is neither" },
      { { "--config", "no-such-file" }, "mrp: no-such-file: No such file or directory" },
      { { "--config", "." }, "mrp: .: " },
   };
   for ( auto const & [arguments, words] : cases ) {
      EXPECT_THAT( refusal( arguments ), HasSubstr( words ) );
   }
}

TEST_F( RunOptionsTest, AnOptionTakesOneTextAndLeavesTheInterfaces ) {
   // Which is not there; but it has been understood as one.
   EXPECT_THAT( refusal( { "--application", "mvrp", "--declare", "10", "--bridge", "none0" } ),
                HasSubstr( "mrp: none0: no such interface" ) );
}

TEST_F( RunOptionsTest, AFileSaysWhatOptionsSay ) {
   auto const mvrp = settingsOfFile( R"(
application = "mvrp"
interfaces = [ "eth0", "eth1" ]
declare = [ "10,20-22", 4094 ]
bridge = true
leave-time = 0.5
leave-all-time = 12
address = "01:80:c2:00:00:0d"
ethertype = 0x1234
json = true
)" );
   EXPECT_EQ( mvrp.application, Mrp::MVRP );
   EXPECT_THAT( mvrp.interfaces, ElementsAre( Pelk::IntfId( "eth0" ), Pelk::IntfId( "eth1" ) ) );
   EXPECT_THAT( mvrp.vlans, ElementsAre( 10, 20, 21, 22, 4094 ) );
   EXPECT_TRUE( mvrp.bridge );
   EXPECT_EQ( mvrp.leaveTime, 0.5 );
   EXPECT_EQ( mvrp.leaveAllTime, 12 );
   EXPECT_EQ( mvrp.address, Pelk::EthAddr( "01:80:c2:00:00:0d" ) );
   EXPECT_EQ( mvrp.ethertype, 0x1234 );
   EXPECT_TRUE( mvrp.json );
   EXPECT_THAT( Command::warningsOf( mvrp ),
                ElementsAre( "a leave-time of 0.5 s is not what others expect: 0.6 to 30" ) );

   auto const msrp = settingsOfFile( R"(
application = "MSRP"
interfaces = "eth0"
listener = "02:00:00:00:00:01:00:07"
[[talker]]
stream = "02:00:00:00:00:02:00:09"
dest = "91:e0:f0:00:00:09"
frame-size = 100
interval-frames = 3
class = "C"
rank = 0
latency = 1000000
[[talker]]
stream = "02:00:00:00:00:02:00:08"
dest = "91:e0:f0:00:00:08"
frame-size = 200
vlan = 7
[[domain]]
class = "C"
priority = 5
vlan = 9
)" );
   EXPECT_FALSE( msrp.json || msrp.bridge );
   EXPECT_EQ( msrp.address, Pelk::EthAddr( "01:80:c2:00:00:0e" ) );
   EXPECT_EQ( msrp.ethertype, 0x22ea );
   EXPECT_THAT( msrp.streams.listeners, ElementsAre( 0x0200'0000'0001'0007 ) );
   using Talker = Mrp::MsrpTalkerAdvertiseAttribute;
   EXPECT_THAT(
      msrp.streams.talkers,
      ElementsAre( Talker( 0x0200'0000'0002'0008, { Pelk::EthAddr( "91:e0:f0:00:00:08" ), 7 },
                           { 200, 1 }, { 3, true }, 0 ),
                   Talker( 0x0200'0000'0002'0009, { Pelk::EthAddr( "91:e0:f0:00:00:09" ), 9 },
                           { 100, 3 }, { 5, false }, 1'000'000 ) ) );
   using Domain = Mrp::MsrpDomainAttribute;
   EXPECT_THAT( msrp.streams.domains,
                ElementsAre( Domain( 4, 5, 9 ), Domain( 5, 2, 2 ), Domain( 6, 3, 2 ) ) );
}

TEST_F( RunOptionsTest, AFileSaysWhatIsTold ) {
   using Command::LogTarget;
   using Settings = Command::RunSettings;
   auto const address = []( std::optional< Linux::StreamAddress > const & given ) {
      return given ? given->text() : "none";
   };
   struct {
      char const * line;
      std::function< std::string( Settings const & ) > read;
      char const * otherwise;
      char const * expected;
   } const cases[] = {
      { "log = 'stderr'",
        []( Settings const & s ) { return std::to_string( static_cast< int >( s.log ) ); }, "0",
        "1" },
      { "trace = 'Mrp/2-4'", []( Settings const & s ) { return s.trace; }, "", "Mrp/2-4" },
      { "ring = 'a.ring'", []( Settings const & s ) { return s.ring; }, "", "a.ring" },
      { "socket = 'a.sock'", []( Settings const & s ) { return s.socket.value_or( "usual" ); },
        "usual", "a.sock" },
      { "socket = 'none'", []( Settings const & s ) { return s.socket.value_or( "usual" ); },
        "usual", "none" },
      { "metrics = 9100", [&]( Settings const & s ) { return address( s.metrics ); }, "none",
        "tcp:127.0.0.1:9100" },
      { "metrics = '0.0.0.0:9100'", [&]( Settings const & s ) { return address( s.metrics ); },
        "none", "tcp:0.0.0.0:9100" },
   };
   std::string const needed = "application = 'mvrp'\ninterfaces = 'eth0'\n";
   for ( auto const & [line, read, otherwise, expected] : cases ) {
      EXPECT_EQ( read( settingsOfFile( needed ) ), otherwise ) << line;
      EXPECT_EQ( read( settingsOfFile( needed + line ) ), expected ) << line;
      // What is given elsewhere is not replaced by what is not given here, and the other way round.
      std::string const path = textFile( "run.toml", needed + line );
      Command::RunOptions given;
      given.fillFrom( Command::readRunConfig( path ) );
      given.fillFrom( Command::readRunConfig( textFile( "other.toml", needed ) ) );
      EXPECT_EQ( read( Command::runSettings( given ) ), expected ) << line;
   }
   EXPECT_EQ( settingsOfFile( needed + "log = 'syslog'" ).log, LogTarget::syslog );
}

TEST( StreamPathTest, EverybodyHasAFolderOfHisOwn ) {
   bool const isRoot = ::geteuid() == 0;
   if ( isRoot ) {
      EXPECT_EQ( Command::defaultStreamAddress( Mrp::MVRP ), "/run/mrp/mvrp.sock" );
      ASSERT_EQ( ::seteuid( 65534 ), 0 );
   }
   ::setenv( "XDG_RUNTIME_DIR", "/run/user/7", 1 );
   EXPECT_EQ( Command::defaultStreamAddress( Mrp::MSRP ), "/run/user/7/mrp/msrp.sock" );
   ::setenv( "XDG_RUNTIME_DIR", "tmp", 1 );
   EXPECT_EQ( Command::defaultStreamAddress( Mrp::MSRP ), "" );
   ::unsetenv( "XDG_RUNTIME_DIR" );
   EXPECT_EQ( Command::defaultStreamAddress( Mrp::MSRP ), "" );
   if ( isRoot ) {
      ASSERT_EQ( ::seteuid( 0 ), 0 );
   }
}

TEST( StreamPathTest, AnAddressIsAPathUnlessItSaysOtherwise ) {
   struct {
      char const * text;
      char const * address;
   } const cases[] = {
      { "/run/a.sock", "unix:/run/a.sock" },
      { "a.sock", "unix:a.sock" },
      { "unix:a", "unix:a" },
      { "./a:b", "unix:./a:b" },
      { "tcp:7000", "tcp:127.0.0.1:7000" },
      { "tcp:10.0.0.1:7000", "tcp:10.0.0.1:7000" },
   };
   for ( auto const & [text, address] : cases ) {
      EXPECT_EQ( Command::streamAddressArgument( text ).text(), address );
   }
}

TEST_F( RunOptionsTest, TheCommandLineGoesBeforeTheFile ) {
   std::string const path = textFile( "run.toml", "application = 'mvrp'\n"
                                                  "interfaces = [ 'none0', 'none1' ]\n"
                                                  "declare = '10'\n"
                                                  "leave-time = 20\n" );
   EXPECT_THAT( refusal( { "--config", path } ), HasSubstr( "is no longer than the leave-time" ) );
   EXPECT_THAT( refusal( { "--config", path, "--leave-time", "2" } ), HasSubstr( "mrp: none0: " ) );
   EXPECT_THAT( refusal( { "--config", path, "--leave-time", "2", "none2" } ),
                HasSubstr( "mrp: none2: " ) );

   Command::RunOptions given;
   given.declare = { 20, 21 };
   given.fillFrom( Command::readRunConfig( path ) );
   EXPECT_THAT( *given.declare, ElementsAre( 20, 21 ) ) << "an option is taken as a whole";
   EXPECT_THAT( *given.interfaces, ElementsAre( "none0", "none1" ) );
}

TEST_F( RunOptionsTest, WhatIsWrongInAFileIsSaidWithItsLine ) {
   struct {
      char const * text;
      char const * words; // behind the file's name
   } const cases[] = {
      { "application = 'mvrp'\ndeclares = '10'\n", ":2: there is no option 'declares'" },
      { "\n\nconfig = 'x'\n", ":3: there is no option 'config'" },
      { "[mvrp]\ndeclare = '10'\n", ":1: there is no option 'mvrp'" },
      { "declare = '10\n", ":1: " },
      { "json = true\njson = false\n", ":2: " },
      { "declare = [\n  10,\n  4095 ]\n", ":3: declare: '4095' is no VLAN: 1 to 4094" },
      { "declare = 10.5\n", ":1: declare: '10.5' is no VLAN" },
      { "declare = 1979-05-27\n", ":1: declare: a text, a number, true or false belongs here" },
      { "declare = [[10]]\n", ":1: declare: a text, a number, true or false belongs here" },
      { "bridge = 'yes'\n", ":1: bridge: 'yes' is neither true nor false" },
      { "bridge = [ true ]\n", ":1: bridge: a text, a number" },
      { "leave-time = -1\n", ":1: leave-time: '-1' is no time in seconds" },
      { "leave-time = inf\n", ":1: leave-time: 'inf' is no time in seconds" },
      { "leave-time = 1e300\n", ":1: leave-time: '10000" },
      { "[[talker]]\nstream = '02:00:00:00:00:01:00:07'\ndestination = 'x'\n",
        ":3: talker: destination: there is no 'destination' here, but stream, dest" },
      { "[[talker]]\ndest = '91:e0:f0:00:00'\n", ":2: talker: dest: '91:e0:f0:00:00' is no MAC" },
      { "json = true\n[[talker]]\nstream = '02:00:00:00:00:01:00:07'\n",
        ":2: talker: dest is missing" },
      { "[[talker]]\ndest = [ 5 ]\n", ":2: talker: dest: a text, a number" },
      { "talker = 5\n", ":1: talker: '5' is no NAME=VALUE" },
   };
   for ( auto const & [text, words] : cases ) {
      std::string const path = textFile( "run.toml", text );
      EXPECT_THAT( refusal( { "--config", path } ), HasSubstr( "mrp: " + path + words ) );
   }
   EXPECT_THAT( refusal( { "--config", textFile( "empty.toml", "" ) } ),
                HasSubstr( "no application is given" ) );
   EXPECT_THAT( refusal( { "--config", textFile( "zero.toml", std::string( 3, '\0' ) ) } ),
                HasSubstr( "zero.toml: is no text file" ) );
}

} // namespace

} // namespace CommandTest
