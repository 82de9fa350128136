// `mrp run` without its platform: stations and bridges on in-memory wires, told apart by what they
// print.
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/memory/Wire.h"

#include "command/run/RunAgent.h"
#include "command/run/RunArguments.h"
#include "tests/command/CommandRun.h"

#include <gmock/gmock.h>

#include <deque>
#include <memory>
#include <regex>
#include <sstream>

namespace CommandTest {

namespace {

using namespace TestSupport;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Role = Stp::MstiPortStatus::Role;

// A host with `mrp run` on it, and what that has printed.
class Station {
 public:
   explicit Station( Command::RunOptions const & options )
      : settings_( Command::runSettings( options ) ) {
      for ( Pelk::IntfId const intfId : settings_.interfaces ) {
         host.interfaceIs( intfId, {}, 1500 );
      }
   }
   void start() {
      agent.reset();
      agent = std::make_unique< Command::RunAgent >( settings_, host, out_ );
   }

   // The lines since the last call, without their times: "eth0 join VLAN 10 JoinIn".
   Lines printed() {
      static std::regex const time( "^ *[0-9.]+ +" );
      static std::regex const blanks( " +" );
      Lines lines;
      std::istringstream in( std::exchange( out_, std::ostringstream() ).str() );
      for ( std::string line; std::getline( in, line ); ) {
         line = std::regex_replace( line, time, "" );
         lines.push_back( std::regex_replace( line, blanks, " " ) );
      }
      return lines;
   }

   void roleIs( char const * port, Role role ) {
      auto const msti = host.stpStatus()->stpiStatusIs( "Stp" )->mstiStatusIs( "Cist" );
      msti->mstiPortStatusIs( port, role );
      msti->mstiPortStatus( port )->roleIs( role );
   }
   void hear( char const * interface, Bytes const & frame ) {
      host.device( Pelk::IntfId( interface ) )->deliver( frame );
   }

   Memory::Host host;
   std::unique_ptr< Command::RunAgent > agent;

 private:
   Command::RunSettings settings_;
   std::ostringstream out_;
};

class RunTest : public ::testing::Test {
 protected:
   // The first filter of a process is that of all: all streams are on the wires of VLANs.
   static Command::RunOptions onPorts( Lines const & ports, Mrp::MrpApplication application ) {
      Command::RunOptions options;
      options.application = application;
      options.interfaces = ports;
      options.address = Pelk::EthAddr( "01:80:c2:00:00:21" );
      options.ethertype = 0x88f5;
      return options;
   }
   Station & station( Command::RunOptions const & options ) {
      return stations_.emplace_back( options );
   }
   // A bridge, if it has more than one port.
   Station & vlanStation( std::set< U16 > const & vlans, Lines const & ports = { "eth0" } ) {
      auto options = onPorts( ports, Mrp::MVRP );
      options.declare = vlans;
      options.bridge = ports.size() > 1;
      return station( options );
   }
   void wire( Station & one, char const * end, Station & other ) {
      Memory::Wire & wire = wires_.emplace_back();
      wire.join( one.host.device( Pelk::IntfId( end ) ) );
      wire.join( other.host.device( Pelk::IntfId( "eth0" ) ) );
   }
   void run( double duration ) { activity_.advanceBy( duration ); }
   // With a station on each of the bridge's ports, from p0 on; null for none.
   void startAll( Station & bridge, std::vector< Station * > const & around ) {
      for ( std::size_t i = 0; i < around.size(); ++i ) {
         if ( around[i] ) {
            wire( bridge, ( "p" + std::to_string( i ) ).c_str(), *around[i] );
         }
      }
      for ( Station & station : stations_ ) {
         station.start();
      }
      run( 1 );
   }

 private:
   Variable const regular_{ noRandomization, "1" };
   Memory::VirtualActivity activity_;
   std::deque< Memory::Wire > wires_;
   std::deque< Station > stations_;
};

TEST_F( RunTest, WhoComesLateHearsAtOnceWhatWasDeclaredBefore ) {
   Station & talking = vlanStation( { 10 } );
   Station & listening = vlanStation( {} );
   wire( talking, "eth0", listening );
   talking.start();
   run( 5 );
   listening.start();
   run( 0.3 );
   EXPECT_THAT( listening.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
}

TEST_F( RunTest, ABridgePassesOnWhatIsRegisteredOnAnotherPortAndWhatItDeclaresItself ) {
   Station & three = vlanStation( { 13 }, { "p0", "p1", "p2" } );
   Station & left = vlanStation( { 10, 11, 13 } );
   Station & middle = vlanStation( { 11, 12 } );
   Station & right = vlanStation( {} );
   startAll( three, { &left, &middle, &right } );

   auto const joined = []( Station & station ) {
      std::set< std::string > vlans;
      for ( std::string const & line : station.printed() ) {
         vlans.insert( line.substr( 15, 2 ) );
      }
      return vlans;
   };
   EXPECT_THAT( joined( left ), ElementsAre( "11", "12", "13" ) ) << "10 is its own alone";
   EXPECT_THAT( joined( middle ), ElementsAre( "10", "11", "13" ) );
   EXPECT_THAT( joined( right ), ElementsAre( "10", "11", "12", "13" ) );
   run( 60 ); // LeaveAlls come and go
   EXPECT_THAT( right.printed(), IsEmpty() );
   three.printed();
   middle.printed();

   left.agent->stop();
   run( 0.3 );
   EXPECT_THAT( three.printed(), IsEmpty() ) << "the leave time has not run out";
   run( 2 );
   EXPECT_THAT( three.printed(),
                ElementsAre( "p0 leave VLAN 10", "p0 leave VLAN 11", "p0 leave VLAN 13" ) );
   EXPECT_THAT( middle.printed(), ElementsAre( "eth0 leave VLAN 10", "eth0 leave VLAN 11" ) );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 leave VLAN 10" ) )
      << "11 is registered in the middle still";
   three.agent->stop();
   run( 2 );
   EXPECT_THAT( right.printed(),
                ElementsAre( "eth0 leave VLAN 11", "eth0 leave VLAN 12", "eth0 leave VLAN 13" ) );
}

TEST_F( RunTest, OnlyPortsThatForwardTakePart ) {
   Station & tree = vlanStation( {}, { "p0", "p1" } );
   Station & left = vlanStation( { 10 } );
   Station & right = vlanStation( { 20 } );
   auto const joins = [&] {
      run( 1 );
      EXPECT_THAT( left.printed(), ElementsAre( "eth0 join VLAN 20 JoinMt" ) );
      EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
   };
   auto const leaves = [&] {
      run( 2 );
      EXPECT_THAT( left.printed(), ElementsAre( "eth0 leave VLAN 20" ) );
      EXPECT_THAT( right.printed(), ElementsAre( "eth0 leave VLAN 10" ) );
   };
   tree.roleIs( "p1", Role::alternate );
   startAll( tree, { &left, &right } );
   EXPECT_THAT( left.printed(), IsEmpty() );
   EXPECT_THAT( right.printed(), IsEmpty() );
   tree.roleIs( "p1", Role::designated );
   joins();

   tree.printed();
   tree.roleIs( "p1", Role::alternate );
   leaves();
   EXPECT_THAT( tree.printed(), ElementsAre( "p1 leave VLAN 20" ) )
      << "the flush ends the registration with no indication";
   // No role any more: nothing keeps the port from forwarding.
   tree.host.stpStatus()->stpiStatusDel( "Stp" );
   joins();
   // A record that has come since is watched like the others.
   tree.roleIs( "p1", Role::backup );
   leaves();
   tree.roleIs( "p1", Role::root );
   joins();
}

TEST_F( RunTest, ADeclarationThatComesBackIsHeardAtOnce ) {
   Station & between = vlanStation( {}, { "p0", "p1" } );
   Station & left = vlanStation( { 10 } );
   Station & right = vlanStation( { 10 } );
   startAll( between, { &left, &right } );
   left.agent->stop();
   run( 1.5 );
   right.printed();
   // The bridge has heard the right's answers to its Lv and takes the right to be content.
   left.start();
   run( 0.5 );
   EXPECT_THAT( right.printed(), Contains( "eth0 join VLAN 10 New" ) );
}

TEST_F( RunTest, ANewIsPassedOnAsANewAndWhatIsNoVlanNotAtAll ) {
   Station & between = vlanStation( {}, { "p0", "p1" } );
   Station & right = vlanStation( {} );
   startAll( between, { nullptr, &right } );
   between.hear( "p0", mvrpFrame( vlans( 4094, { JoinIn, JoinIn } ), vlans( 0, { JoinIn } ) ) );
   run( 1 );
   EXPECT_EQ( between.printed().size(), 3u );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 4094 JoinMt" ) );
   between.hear( "p0", mvrpFrame( vlans( 4094, { New } ) ) );
   run( 1 );
   // It travels in two frames.
   EXPECT_THAT( right.printed(),
                ElementsAre( "eth0 join VLAN 4094 New", "eth0 join VLAN 4094 New" ) );
   // Once: what else happens to the VLAN is nothing new.
   between.hear( "p1", mvrpFrame( vlans( 4094, { JoinIn } ) ) );
   run( 1 );
   EXPECT_THAT( right.printed(), IsEmpty() );
}

TEST_F( RunTest, AListenerIsReadyUnlessItsTalkerFailed ) {
   std::string const stream = "02:00:00:00:00:01:00:07";
   auto listens = onPorts( { "eth0" }, Mrp::MSRP );
   listens.listeners = { 0x0200'0000'0001'0007 };
   auto talks = onPorts( { "eth0" }, Mrp::MSRP );
   talks.talkers = { Command::talkerArgument(
      Command::partsOf( "stream=" + stream + ",dest=91:e0:f0:00:00:07,frame-size=100" ) ) };
   Station & listening = station( listens );
   Station & talking = station( talks );
   wire( talking, "eth0", listening );
   listening.start();
   run( 1 );
   talking.start();
   run( 1 );
   std::string const heard = "eth0 join Listener " + stream + " New ";
   EXPECT_THAT( talking.printed(), Contains( heard + "(Ready)" ) );

   // A bridge would put a Failed in the place of the Advertise, and may take it back.
   auto const hearFailed = [&]( Event event ) {
      FailedTalker const failed{ talker( 0x0200'0000'0001'0007 ) };
      Frame frame = msrpFrame( failedTalkers( failed, { event } ) );
      listening.hear( "eth0", frame.to( 0x0180'c200'0021 ).type( 0x88f5 ) );
      run( 1 );
   };
   run( 30 );
   talking.printed();
   hearFailed( JoinIn );
   EXPECT_THAT( talking.printed(), Contains( heard + "(Asking Failed)" ) );
   hearFailed( Lv );
   EXPECT_THAT( talking.printed(), Contains( heard + "(Ready)" ) );
}

} // namespace

} // namespace CommandTest
