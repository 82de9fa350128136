// `mrp run` without its platform: stations and bridges on in-memory wires, told apart by what they
// print.
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/memory/Wire.h"

#include "command/run/RunAgent.h"
#include "tests/support/Mrpdu.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <deque>
#include <memory>
#include <sstream>

namespace {

using namespace TestSupport;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Lines = std::vector< std::string >;
using Role = Stp::MstiPortStatus::Role;

// Options in the words of the command line: "declare=10", "bridge=true".
Command::RunSettings settingsOf( std::vector< std::string > const & words ) {
   Command::RunOptions options;
   for ( std::string const & word : words ) {
      auto const equals = word.find( '=' );
      for ( Command::RunOption const & option : Command::runOptions() ) {
         if ( word.substr( 0, equals ) == option.name ) {
            option.read( options, word.substr( equals + 1 ) );
         }
      }
   }
   return Command::runSettings( options );
}

// A host with `mrp run` on it, and what that has printed.
class Station {
 public:
   explicit Station( std::vector< std::string > const & words ) : settings_( settingsOf( words ) ) {
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
      Lines lines;
      std::istringstream in( std::exchange( out_, std::ostringstream() ).str() );
      for ( std::string line; std::getline( in, line ); ) {
         std::istringstream words( line );
         std::string word;
         words >> word;
         line.clear();
         while ( words >> word ) {
            line += ( line.empty() ? "" : " " ) + word;
         }
         lines.push_back( line );
      }
      return lines;
   }
   // As it is, since the last call.
   std::string output() { return std::exchange( out_, std::ostringstream() ).str(); }

   void roleIs( char const * port, Role role ) {
      host.stpStatus()->stpiStatusIs( "Stp" )->mstiStatusIs( "Cist" )->mstiPortStatusIs( port,
                                                                                         role );
      host.stpStatus()->stpiStatus( "Stp" )->mstiStatus( "Cist" )->mstiPortStatus( port )->roleIs(
         role );
   }
   void linkIs( char const * interface, bool up ) {
      host.allIntfStatusDir()->intfStatus( Pelk::IntfId( interface ) )->upIs( up );
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
   RunTest() { setenv( "DISABLE_LEAVE_ALL_RANDOMIZATION", "1", 1 ); }

   Station & station( std::vector< std::string > const & words ) {
      return stations_.emplace_back( words );
   }
   Station & vlanStation( std::vector< std::string > words ) {
      words.insert( words.begin(), { "application=mvrp", "interfaces=eth0" } );
      return station( words );
   }
   // All streams are on the wires of VLANs, as the first filter of a process is that of all.
   Station & streamStation( std::vector< std::string > words ) {
      words.insert( words.begin(), { "application=msrp", "interfaces=eth0", "ethertype=0x88f5",
                                     "address=01:80:c2:00:00:21" } );
      return station( words );
   }
   void wire( Station & one, char const * oneEnd, Station & other,
              char const * otherEnd = "eth0" ) {
      Memory::Wire & wire = wires_.emplace_back();
      wire.join( one.host.device( Pelk::IntfId( oneEnd ) ) );
      wire.join( other.host.device( Pelk::IntfId( otherEnd ) ) );
   }
   void startAll() {
      for ( Station & station : stations_ ) {
         station.start();
      }
      run( 1 );
   }
   void run( double duration ) { activity_.advanceBy( duration ); }

   // A bridge with stations on its ports, all running.
   void bridgeBetween( Station & bridge, std::vector< Station * > const & around ) {
      char const * const ports[] = { "p0", "p1", "p2" };
      for ( std::size_t i = 0; i < around.size(); ++i ) {
         wire( bridge, ports[i], *around[i] );
      }
      startAll();
   }

 private:
   Memory::VirtualActivity activity_;
   std::deque< Memory::Wire > wires_;
   std::deque< Station > stations_;
};

TEST_F( RunTest, AStationHearsWhatItsNeighbourDeclaresAndWithdraws ) {
   Station & talking = vlanStation( { "declare=10,20-21" } );
   Station & listening = vlanStation( {} );
   wire( talking, "eth0", listening );
   startAll();
   EXPECT_THAT( listening.printed(),
                ElementsAre( "eth0 join VLAN 10 JoinMt", "eth0 join VLAN 20 JoinMt",
                             "eth0 join VLAN 21 JoinMt" ) );
   run( 60 ); // LeaveAlls come and go
   EXPECT_THAT( listening.printed(), IsEmpty() );

   talking.agent->stop();
   run( 0.3 );
   EXPECT_THAT( listening.printed(), IsEmpty() ) << "the leave time has not run out";
   run( 0.5 );
   EXPECT_THAT( listening.printed(),
                ElementsAre( "eth0 leave VLAN 10", "eth0 leave VLAN 20", "eth0 leave VLAN 21" ) );
   EXPECT_THAT( talking.printed(), IsEmpty() );
}

TEST_F( RunTest, WhoComesLateHearsAtOnceWhatWasDeclaredBefore ) {
   Station & talking = vlanStation( { "declare=10" } );
   Station & listening = vlanStation( {} );
   wire( talking, "eth0", listening );
   talking.start();
   run( 5 );
   listening.start();
   run( 0.3 );
   EXPECT_THAT( listening.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
}

TEST_F( RunTest, TheLeaveTimesAreThoseGiven ) {
   Station & listening = vlanStation( { "leave-time=3", "leave-all-time=20" } );
   listening.start();
   run( 0 );
   listening.hear( "eth0", mvrpFrame( vlans( 10, { JoinIn } ) ) );
   listening.hear( "eth0", mvrpFrame( vlans( 11, { JoinIn } ) ) );
   run( 1 );
   listening.hear( "eth0", mvrpFrame( vlans( 10, { Lv } ) ) );
   run( 2.8 );
   EXPECT_EQ( listening.printed().size(), 2u );
   run( 0.4 );
   EXPECT_THAT( listening.printed(), ElementsAre( "eth0 leave VLAN 10" ) );
   run( 18.6 ); // 22.8
   EXPECT_THAT( listening.printed(), IsEmpty() );
   run( 0.5 );
   EXPECT_THAT( listening.printed(), ElementsAre( "eth0 leave VLAN 11" ) );
}

TEST_F( RunTest, ABridgePassesOnWhatIsRegisteredOnAnotherPort ) {
   Station & bridge = station(
      { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1", "interfaces=p2" } );
   Station & left = vlanStation( { "declare=10,11" } );
   Station & middle = vlanStation( { "declare=11,12" } );
   Station & right = vlanStation( {} );
   bridgeBetween( bridge, { &left, &middle, &right } );

   auto const vlansJoined = []( Station & station ) {
      std::set< std::string > numbers;
      for ( std::string const & line : station.printed() ) {
         numbers.insert( line.substr( 0, line.rfind( ' ' ) ) );
      }
      return numbers;
   };
   EXPECT_THAT( vlansJoined( left ),
                UnorderedElementsAre( "eth0 join VLAN 11", "eth0 join VLAN 12" ) )
      << "and not 10, which only itself declares";
   EXPECT_THAT( vlansJoined( middle ),
                UnorderedElementsAre( "eth0 join VLAN 10", "eth0 join VLAN 11" ) );
   EXPECT_THAT(
      vlansJoined( right ),
      UnorderedElementsAre( "eth0 join VLAN 10", "eth0 join VLAN 11", "eth0 join VLAN 12" ) );
   bridge.printed();

   left.agent->stop();
   run( 2 );
   EXPECT_THAT( bridge.printed(), ElementsAre( "p0 leave VLAN 10", "p0 leave VLAN 11" ) );
   EXPECT_THAT( middle.printed(), ElementsAre( "eth0 leave VLAN 10", "eth0 leave VLAN 11" ) );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 leave VLAN 10" ) )
      << "11 is registered in the middle still";
   run( 60 );
   EXPECT_THAT( right.printed(), IsEmpty() );
}

TEST_F( RunTest, WhatTheBridgeItselfDeclaresStaysWhenOthersLeave ) {
   Station & bridge = station(
      { "application=mvrp", "bridge=true", "declare=10", "interfaces=p0", "interfaces=p1" } );
   Station & left = vlanStation( { "declare=10" } );
   Station & right = vlanStation( {} );
   bridgeBetween( bridge, { &left, &right } );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
   left.agent->stop();
   run( 20 );
   EXPECT_THAT( right.printed(), IsEmpty() );
   bridge.agent->stop();
   run( 2 );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 leave VLAN 10" ) );
}

TEST_F( RunTest, OnlyPortsThatForwardTakePart ) {
   Station & bridge =
      station( { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1" } );
   Station & left = vlanStation( { "declare=10" } );
   Station & right = vlanStation( { "declare=20" } );
   bridge.roleIs( "p1", Role::alternate );
   bridgeBetween( bridge, { &left, &right } );
   EXPECT_THAT( left.printed(), IsEmpty() );
   EXPECT_THAT( right.printed(), IsEmpty() );

   bridge.roleIs( "p1", Role::designated );
   run( 1 );
   EXPECT_THAT( left.printed(), ElementsAre( "eth0 join VLAN 20 JoinMt" ) );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );

   bridge.printed();
   bridge.roleIs( "p1", Role::alternate );
   run( 2 );
   EXPECT_THAT( left.printed(), ElementsAre( "eth0 leave VLAN 20" ) );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 leave VLAN 10" ) );
   EXPECT_THAT( bridge.printed(), ElementsAre( "p1 leave VLAN 20" ) )
      << "the flush ends the registration with no indication";

   // No role any more: nothing keeps the port from forwarding.
   bridge.host.stpStatus()->stpiStatusDel( "Stp" );
   run( 1 );
   EXPECT_THAT( left.printed(), ElementsAre( "eth0 join VLAN 20 JoinMt" ) );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );

   // A record that has come since is watched like the others.
   bridge.roleIs( "p1", Role::backup );
   run( 2 );
   EXPECT_THAT( left.printed(), ElementsAre( "eth0 leave VLAN 20" ) );
   bridge.roleIs( "p1", Role::root );
   run( 1 );
   EXPECT_THAT( left.printed(), ElementsAre( "eth0 join VLAN 20 JoinMt" ) );
}

TEST_F( RunTest, ADeclarationThatComesBackIsHeardAtOnce ) {
   Station & bridge =
      station( { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1" } );
   Station & left = vlanStation( { "declare=10" } );
   Station & right = vlanStation( { "declare=10" } );
   bridgeBetween( bridge, { &left, &right } );
   left.agent->stop();
   run( 1.5 );
   right.printed();
   // The bridge has heard the right's answers to its Lv and takes the right to be content.
   left.start();
   run( 0.5 );
   EXPECT_THAT( right.printed(), ::testing::Contains( "eth0 join VLAN 10 New" ) );
}

TEST_F( RunTest, ANewIsPassedOnAsANew ) {
   Station & bridge =
      station( { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1" } );
   Station & right = vlanStation( {} );
   wire( bridge, "p1", right );
   startAll();
   bridge.hear( "p0", mvrpFrame( vlans( 10, { JoinIn } ) ) );
   run( 1 );
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
   bridge.hear( "p0", mvrpFrame( vlans( 10, { New } ) ) );
   run( 1 );
   // It travels in two frames.
   EXPECT_THAT( right.printed(), ElementsAre( "eth0 join VLAN 10 New", "eth0 join VLAN 10 New" ) );
   // Once: what else happens to the VLAN is nothing new.
   bridge.hear( "p1", mvrpFrame( vlans( 10, { JoinIn } ) ) );
   run( 1 );
   EXPECT_THAT( right.printed(), IsEmpty() );
}

TEST_F( RunTest, NumbersThatAreNoVlansAreNotPassedOn ) {
   Station & bridge =
      station( { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1" } );
   Station & right = vlanStation( {} );
   wire( bridge, "p1", right );
   startAll();
   bridge.hear( "p0", mvrpFrame( vlans( 4093, { JoinIn, JoinIn, JoinIn } ),
                                 vlans( 0, { JoinIn, JoinIn } ) ) );
   run( 1 );
   EXPECT_EQ( bridge.printed().size(), 5u );
   EXPECT_THAT( right.printed(),
                UnorderedElementsAre( "eth0 join VLAN 1 JoinMt", "eth0 join VLAN 4093 JoinMt",
                                      "eth0 join VLAN 4094 JoinMt" ) );
}

TEST_F( RunTest, AnInterfaceThatGoesEndsItsRegistrationsAndStartsAfresh ) {
   Station & bridge = station(
      { "application=mvrp", "bridge=true", "declare=5", "interfaces=p0", "interfaces=p1" } );
   Station & left = vlanStation( { "declare=10" } );
   Station & right = vlanStation( {} );
   bridgeBetween( bridge, { &left, &right } );
   bridge.printed();
   left.printed();

   auto const check = [&]( auto goes, auto comes ) {
      goes();
      run( 0.05 );
      EXPECT_THAT( bridge.printed(), ElementsAre( "p0 leave VLAN 10" ) );
      run( 15 );
      EXPECT_THAT( right.printed(), ::testing::Contains( "eth0 leave VLAN 10" ) );
      comes();
      run( 1 );
      EXPECT_THAT( bridge.printed(), ElementsAre( ::testing::StartsWith( "p0 join VLAN 10" ) ) );
      EXPECT_THAT( right.printed(), ::testing::Contains( "eth0 join VLAN 10 JoinMt" ) );
      EXPECT_THAT( bridge.output(), IsEmpty() );
   };
   Pelk::IntfId const p0( "p0" );
   check( [&] { bridge.linkIs( "p0", false ); }, [&] { bridge.linkIs( "p0", true ); } );
   check( [&] { bridge.host.interfaceDel( p0 ); },
          [&] {
             bridge.host.interfaceIs( p0, {}, 1500 );
             wire( bridge, "p0", left );
          } );
}

TEST_F( RunTest, ADeclarationIsMadeWhenTheLinkComesUp ) {
   Station & here = vlanStation( { "declare=10" } );
   Station & there = vlanStation( {} );
   wire( here, "eth0", there );
   startAll();
   there.printed();
   here.linkIs( "eth0", false );
   there.linkIs( "eth0", false );
   run( 1 );
   EXPECT_THAT( there.printed(), ElementsAre( "eth0 leave VLAN 10" ) );
   here.linkIs( "eth0", true );
   there.linkIs( "eth0", true );
   run( 0.3 );
   EXPECT_THAT( there.printed(), ElementsAre( "eth0 join VLAN 10 JoinMt" ) );
}

constexpr char const * aTalker =
   "talker=stream=02:00:00:00:00:01:00:07,dest=91:e0:f0:00:00:07,frame-size=100";

TEST_F( RunTest, AListenerIsReadyWhileThereIsATalker ) {
   Station & listening = streamStation( { "listener=02:00:00:00:00:01:00:07" } );
   Station & talking = streamStation( { aTalker } );
   wire( talking, "eth0", listening );
   listening.start();
   run( 1 );
   talking.start();
   run( 1 );
   EXPECT_THAT(
      talking.printed(),
      ::testing::IsSupersetOf( { "eth0 join Listener 02:00:00:00:00:01:00:07 New (Ready)" } ) );
   EXPECT_THAT( listening.printed(),
                ::testing::IsSupersetOf(
                   { "eth0 join Talker Advertise 02:00:00:00:00:01:00:07 JoinMt (destination "
                     "91:e0:f0:00:00:07, VLAN 2, frames 100 x 1, priority 3, rank 1, latency 0 ns)",
                     "eth0 join Domain class A JoinMt (priority 3, VID 2)",
                     "eth0 join Domain class B JoinMt (priority 2, VID 2)" } ) );
   run( 30 );
   listening.printed();
   talking.printed();

   // A bridge would put a Failed in the place of the Advertise, and may take it back.
   FailedTalker const failed{ talker( 0x0200'0000'0001'0007 ) };
   Frame const badNews = msrpFrame( failedTalkers( failed, { JoinIn } ) );
   Frame const goodNews = msrpFrame( failedTalkers( failed, { Lv } ) );
   listening.hear( "eth0", Frame( badNews ).to( 0x0180'c200'0021 ).type( 0x88f5 ) );
   run( 0.5 );
   EXPECT_THAT(
      talking.printed(),
      ::testing::Contains( "eth0 join Listener 02:00:00:00:00:01:00:07 New (Asking Failed)" ) );
   listening.hear( "eth0", Frame( goodNews ).to( 0x0180'c200'0021 ).type( 0x88f5 ) );
   run( 1 );
   EXPECT_THAT( talking.printed(),
                ::testing::Contains( "eth0 join Listener 02:00:00:00:00:01:00:07 New (Ready)" ) );

   listening.printed();
   talking.agent->stop();
   run( 1 );
   EXPECT_THAT( listening.printed(), ::testing::Contains( ::testing::StartsWith(
                                        "eth0 leave Talker Advertise 02:00:00:00:00:01:00:07" ) ) );
   EXPECT_THAT( talking.printed(),
                ::testing::Not( ::testing::Contains( ::testing::HasSubstr( "leave Listener" ) ) ) );
}

TEST_F( RunTest, LinesOfJsonHaveTheMembersOfAReplay ) {
   run( 7 ); // times are counted from the start of the command
   Station & listening = vlanStation( { "json=true" } );
   listening.start();
   run( 2.5 );
   listening.hear( "eth0", mvrpFrame( vlans( 10, { New } ) ) );
   auto const line = nlohmann::json::parse( listening.output() );
   EXPECT_EQ( line, nlohmann::json::parse(
                       R"({"time": 2.5, "interface": "eth0", "kind": "join", "attributeType": 1,
          "attributeEvent": "newEvent", "key": "10", "value": "000a"})" ) );
   run( 0.25 );
   listening.agent->showAttributes();
   auto const table = nlohmann::json::parse( listening.output() );
   EXPECT_EQ( table.at( "time" ), 2.75 );
   EXPECT_EQ( table.at( "kind" ), "attributes" );
   EXPECT_EQ( table.at( "attributes" ).at( 0 ).at( "registrarState" ), "mrpIn" );
}

TEST_F( RunTest, TheTableShowsEachInterface ) {
   Station & bridge =
      station( { "application=mvrp", "bridge=true", "interfaces=p0", "interfaces=p1" } );
   bridge.start();
   run( 0 );
   bridge.hear( "p0", mvrpFrame( vlans( 10, { JoinMt, JoinMt } ) ) );
   run( 2 );
   bridge.output();
   bridge.agent->showAttributes();
   EXPECT_EQ( bridge.output(), "\n"
                               "interface  type  VLAN   applicant  registrar\n"
                               "p0         VLAN  10-11  VO         IN\n"
                               "p1         VLAN  10-11  QA         MT\n\n" );
}

} // namespace
