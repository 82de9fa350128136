// What `mrp run` is told, in a file and on the command line, and what it says to a file that is
// wrong.
#include "command/StreamPath.h"
#include "command/run/RunConfig.h"
#include "command/run/RunSettings.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <unistd.h>

namespace CommandTest {

namespace {

using ::testing::ElementsAre;

class RunOptionsTest : public CommandTest {
 protected:
   // What a file says, with nothing on the command line.
   Command::RunSettings settings( std::string const & text ) const {
      Command::RunOptions options;
      options.fillFrom( Command::readRunConfig( file( "run.toml", text ) ) );
      return Command::runSettings( options );
   }
};

TEST_F( RunOptionsTest, WhatIsWrongInAFileIsSaidWithItsLine ) {
   std::pair< std::string, char const * > const cases[] = {
      { "application = 'mvrp'\ndeclares = '10'\n", ":2: there is no option 'declares'" },
      { "declare = [\n  10,\n  4095 ]\n", ":3: declare: '4095' is no VLAN: 1 to 4094" },
      { "declare = 1979-05-27\n", ":1: declare: a text, a number, true or false belongs here" },
      { "[[talker]]\nstream = '02:00:00:00:00:01:00:07'\ndestination = 'x'\n",
        ":3: talker: destination: there is no 'destination' here, but stream, dest" },
      { "json = true\n[[talker]]\nstream = '02:00:00:00:00:01:00:07'\n",
        ":2: talker: dest is missing" },
      { std::string( 3, '\0' ), ": is no text file" },
   };
   for ( auto const & [text, words] : cases ) {
      std::string const path = file( "run.toml", text );
      expectRefused( mrp( "run --config " + path ), path + words );
   }
}

TEST_F( RunOptionsTest, AFileSaysWhatOptionsSay ) {
   auto const mvrp = settings( R"(
application = "mvrp"
interfaces = [ "eth0", "eth1" ]
declare = [ "10,20-22", 4094 ]
bridge = true
leave-time = 0.5
address = "01:80:c2:00:00:0d"
ethertype = 0x1234
metrics = 9100
)" );
   EXPECT_THAT( mvrp.interfaces, ElementsAre( Pelk::IntfId( "eth0" ), Pelk::IntfId( "eth1" ) ) );
   EXPECT_THAT( mvrp.vlans, ElementsAre( 10, 20, 21, 22, 4094 ) );
   EXPECT_TRUE( mvrp.bridge );
   EXPECT_EQ( mvrp.address, Pelk::EthAddr( "01:80:c2:00:00:0d" ) );
   EXPECT_EQ( mvrp.ethertype, 0x1234 );
   EXPECT_EQ( mvrp.metrics->text(), "tcp:127.0.0.1:9100" );
   EXPECT_THAT( Command::warningsOf( mvrp ),
                ElementsAre( "a leave-time of 0.5 s is not what others expect: 0.6 to 30" ) );

   auto const msrp = settings( R"(
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

TEST_F( RunOptionsTest, TheCommandLineGoesBeforeTheFile ) {
   std::string const run = "run --config " + file( "run.toml", "application = 'mvrp'\n"
                                                               "interfaces = [ 'none0', 'none1' ]\n"
                                                               "leave-time = 20\n" );
   expectRefused( mrp( run ), "a leave-all-time of 10 s is no longer" );
   expectRefused( mrp( run + " --leave-time 2" ), "none0: no such interface" );
   expectRefused( mrp( run + " --leave-time 2 none2" ), "none2: " );
}

TEST_F( RunOptionsTest, WhatThereIsOnceIsToldOnce ) {
   std::string const domain = " --domain class=B,priority=2,vlan=";
   expectRefused( mrp( "run --application msrp none0" + domain + "2" + domain + "3" ),
                  "two domains of class B" );
}

TEST( StreamPathTest, EverybodyHasAFolderOfHisOwn ) {
   bool const isRoot = ::geteuid() == 0;
   if ( isRoot ) {
      EXPECT_EQ( Command::defaultStreamAddress( Mrp::MVRP ), "/run/mrp/mvrp.sock" );
      ASSERT_EQ( ::seteuid( 65534 ), 0 );
   }
   for ( auto const & [folder, socket] :
         { std::pair( "/run/user/7", "/run/user/7/mrp/msrp.sock" ), { "tmp", "" } } ) {
      Variable const own( "XDG_RUNTIME_DIR", folder );
      EXPECT_EQ( Command::defaultStreamAddress( Mrp::MSRP ), socket );
   }
   EXPECT_EQ( Command::defaultStreamAddress( Mrp::MSRP ), "" );
   if ( isRoot ) {
      ASSERT_EQ( ::seteuid( 0 ), 0 );
   }
}

} // namespace

} // namespace CommandTest
