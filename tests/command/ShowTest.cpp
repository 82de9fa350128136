// What `mrp show` makes of a mirror: a participant publishes, its mirror is at the other end of a
// stream, and what is shown is read as people, programs and monitoring systems read it.
#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include "command/report/Metrics.h"
#include "command/show/ShowFrame.h"
#include "command/show/ShowJson.h"
#include "command/show/ShowSource.h"
#include "command/show/ShowText.h"
#include "tests/command/CommandRun.h"
#include "tests/support/MirrorLine.h"
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <sstream>

namespace CommandTest {

namespace {

using namespace TestSupport;
using Command::ShowFilter;
using Command::ShowStream;
using testing::ElementsAre;
using testing::HasSubstr;

ShowFilter filterOf( Lines const & interfaces, Lines const & types, Lines const & states ) {
   ShowFilter filter;
   filter.interfaces.insert( interfaces.begin(), interfaces.end() );
   for ( auto const & type : types ) {
      filter.typeAdd( type );
   }
   for ( auto const & state : states ) {
      filter.stateAdd( state );
   }
   return filter;
}
std::string text( ShowStream const & stream, std::size_t width = 80 ) {
   std::ostringstream out;
   Command::writeShowText( std::vector{ stream }, width, out );
   return out.str();
}
// A participant and the far end of its stream.
struct Shown {
   Shown( Mrp::MrpApplication application, Lines const & interfaces,
          std::function< void( Mrp::MrpConfig & ) > configure = {} )
      : participant( application, interfaces, { .configure = std::move( configure ) } ) {
      mounts.statusIs( Korv::Ptr< Mrp::MrpStatus >( &participant.status() ) );
      mounts.configIs( Korv::Ptr< Mrp::MrpConfig >( &participant.config() ) );
      mounts.countersIs( participant.sm().mrpCounters() );
   }
   ShowStream stream( ShowFilter const & filter = {} ) {
      line.emplace( mounts );
      line->moveAll();
      return { "unix:/run/x.sock", true, "", true, Command::showViews( line->mirror(), filter ) };
   }

   Participant participant;
   Mrp::AttrLogMounts mounts;
   std::optional< MirrorLine > line;
};

struct Vlans : Shown {
   Vlans()
      : Shown( Mrp::MVRP, { "eth1", "eth0" }, []( Mrp::MrpConfig & config ) {
           config.intfLeaveTimeIs( Pelk::IntfId( "eth1" ), 1.25 );
           config.txLeaveAllExpiryTimeIs( 2 );
        } ) {
      participant.receive( "eth0", mvrpFrame( vlans( 10, { JoinIn, JoinIn, JoinIn } ) ) );
      participant.declare( "eth1", Vlan{ 11 }, JoinIn );
      participant.receive( "eth1", mvrpFrame( vlans( 4094, { JoinMt } ) ).version( 1 ) );
      participant.advanceBy( 1 );
      add( 12, "00 0c", Mrp::mrpQuietActive, Mrp::mrpLv );
      add( 13, "0d", Mrp::mrpQuietObserver, Mrp::mrpMt );
   }
   void add( U64 vlan, char const * value, Mrp::MrpApplicantState applicant,
             Mrp::MrpRegistrarState registrar ) {
      participant.attributeIs( "eth1", vlanType, vlan, fromHex( value ), applicant, registrar );
   }
};

struct Streams : Shown {
   static constexpr U64 id = 0x0200'0000'0001'0007;

   Streams() : Shown( Mrp::MSRP, { "eth0", "eth1" } ) {
      participant.receive( "eth0", msrpFrame( domains( { 6, 3, 2 }, { JoinIn } ),
                                              talkers( talker( id ), { JoinIn } ),
                                              failedTalkers( { talker( id + 16 ) }, { New } ) ) );
      participant.declare( "eth0", Listener{ id, Ready }, JoinIn );
      participant.declare( "eth1", Listener{ id + 1, AskingFailed }, JoinIn );
      participant.advanceBy( 2 );
   }
};

TEST( ShowTest, showsVlansInRowsThatTheyShare ) {
   Vlans shown;
   std::string const all =
      "timers       leave 0.6 s, LeaveAll 10 s, leave after our own LeaveAll 2 s\n"
      "flooding     off\n"
      "frames       2 heard, 2 sent\n"
      "indications  4 joins, 0 leaves\n"
      "errors       1 of another protocol version\n"
      "\n"
      "interface  type  declared  registered  leaving  LeaveAll period\n"
      "eth0       VLAN         0           3        0  10 s\n"
      "eth1       VLAN         2           1        1  10 s\n"
      "\n"
      "interface  leave   LeaveAll\n"
      "eth1       1.25 s\n"
      "\n"
      "interface  VLAN   app  reg\n"
      "eth0       10-12  AO   IN\n"
      "eth1       11     QA   MT\n"
      "eth1       12     QA   LV\n"
      "eth1       4094   VO   IN\n"
      "\n"
      "interface  key  app  reg  value\n"
      "eth1        13  QO   MT   0d\n";
   ShowStream stream = shown.stream();
   EXPECT_EQ( text( stream ), "MVRP at unix:/run/x.sock\n" + all );
   stream.connected = false;
   stream.problem = "why";
   EXPECT_EQ( text( stream ),
              "MVRP at unix:/run/x.sock: not connected, trying again\nproblem      why\n" + all );
}

TEST( ShowTest, showsStreamsInTheWidthThatThereIs ) {
   Streams shown;
   auto const failed = [&]( std::size_t width ) {
      std::string const all =
         text( shown.stream( filterOf( {}, { "Talker Failed" }, {} ) ), width );
      return all.substr( all.find( "Talker Failed\n" ) );
   };
   EXPECT_EQ( failed( 80 ),
              "Talker Failed\n"
              "interface  stream                   app  reg  destination        VLAN  frames\n"
              "eth0       02:00:00:00:00:01:00:17  VO   IN   91:e0:f0:00:00:17     2  1000 x 1\n"
              "    priority 3, rank 1, latency 50000 ns, bridge 8000.02:00:00:00:00:01,\n"
              "    failure 8 (egress port is not AVB capable)\n" );
   EXPECT_THAT( failed( 200 ),
                HasSubstr( "  latency   bridge                  failure\n"
                           "eth0       02:00:00:00:00:01:00:17  VO   IN   91:e0:f0:00:00:17     2  "
                           "1000 x 1         3     1  50000 ns  8000.02:00:00:00:00:01  "
                           "8 (egress port is not AVB capable)\n" ) );
   std::string const all = text( shown.stream() );
   EXPECT_THAT( all, HasSubstr( "eth1       02:00:00:00:00:01:00:08  QA   MT   Asking Failed\n" ) );
   EXPECT_THAT( all, HasSubstr( "eth0       class A  AO   IN          3    2\n" ) );
   EXPECT_FALSE( std::regex_search( all, std::regex( "[^\n]{81}" ) ) );
}

TEST( ShowTest, tellsProgramsNumbersAsNumbers ) {
   std::ostringstream out;
   Command::writeShowJson( std::vector{ Streams().stream() }, Command::JsonForm::line, out );
   auto const msrp = nlohmann::json::parse( out.str() )["participants"][0];
   EXPECT_EQ( msrp["interfaces"][0]["types"][1],
              nlohmann::json::parse( R"({"attributeType":2,"name":"Talker Failed",
                 "leaveAllPeriod":10.0,"declared":0,"registered":1,"leaving":0})" ) );
   EXPECT_EQ( msrp["attributes"][1]["fields"],
              nlohmann::json::parse( R"({"stream":"02:00:00:00:00:01:00:17","vlan":2,"priority":3,
            "destination":"91:e0:f0:00:00:17","rank":1,"maxFrameSize":1000,"maxIntervalFrames":1,
            "accumulatedLatency":50000,"bridge":"8000.02:00:00:00:00:01","failureCode":8})" ) );
}

TEST( ShowTest, countsForMonitoringAndNamesNoVlan ) {
   Vlans shown;
   auto const metrics = [&] {
      Participant & mvrp = shown.participant;
      return Command::metricsText( Mrp::MVRP, mvrp.status(), mvrp.counters(), mvrp.config() );
   };
   std::string const few = metrics();
   std::pair< char const *, char const * > const samples[] = {
      { "mrp_frames_received_total", R"(} 2)" },
      { "mrp_join_indications_total", R"(} 4)" },
      { "mrp_leave_indications_total", R"(} 0)" },
      { "mrp_incorrect_versions_total", R"(} 1)" },
      { "mrp_interface_leave_time_seconds", R"(,interface="eth1"} 1.25)" },
      { "mrp_leave_all_period_seconds", R"(,interface="eth0",type="VLAN"} 10)" },
      { "mrp_registrar_attributes", R"(,interface="eth0",type="VLAN",state="IN"} 3)" },
      { "mrp_applicant_attributes", R"(,interface="eth1",type="VLAN",state="QA"} 2)" },
   };
   for ( auto const & [name, rest] : samples ) {
      EXPECT_THAT( few, HasSubstr( std::string( name ) + R"({application="mvrp")" + rest + "\n" ) );
   }
   shown.add( 100, "00 64", Mrp::mrpQuietActive, Mrp::mrpMt );
   EXPECT_EQ( std::ranges::count( metrics(), '\n' ), std::ranges::count( few, '\n' ) );
}

TEST( ShowTest, filtersByAnyOfAKindAndAllOfDifferentKinds ) {
   Streams shown;
   struct {
      Lines interfaces, types, states, left; // "INTERFACE TYPE"
   } const cases[] = {
      { {}, {}, {}, { "eth0 1", "eth0 2", "eth0 3", "eth0 4", "eth1 3" } },
      { { "eth1" }, {}, {}, { "eth1 3" } },
      { { "eth1", "eth0", "eth7" }, { "listener" }, {}, { "eth0 3", "eth1 3" } },
      { {}, { "talker-failed", "4" }, {}, { "eth0 2", "eth0 4" } },
      { {}, { "vlan" }, {}, {} },
      { {}, {}, { "qa" }, { "eth0 3", "eth1 3" } },
      { {}, {}, { "QA", "IN" }, {} },
      { {}, {}, { "VO", "IN", "AO" }, { "eth0 1", "eth0 2", "eth0 4" } },
   };
   for ( auto const & [interfaces, types, states, left] : cases ) {
      ShowStream const stream = shown.stream( filterOf( interfaces, types, states ) );
      Lines lines;
      for ( auto const & attribute : stream.views.front().attributes ) {
         lines.push_back( attribute.interface + " " + std::to_string( attribute.attributeType ) );
      }
      EXPECT_EQ( lines, left );
   }
   // What is counted does not depend on the states that are asked for.
   auto const counted =
      shown.stream( filterOf( {}, { "3" }, { "LV" } ) ).views.front().interfaces.at( 1 ).types;
   ASSERT_EQ( counted.size(), 1u );
   EXPECT_EQ( counted.front().declared, 1u );
}

TEST( ShowTest, keepsNamesFromCommandingTheTerminal ) {
   Shown shown( Mrp::MVRP, { "e\033[2\xC2\x9B" } );
   shown.participant.declare( "e\033[2\xC2\x9B", Vlan{ 1 }, JoinIn );
   shown.participant.advanceBy( 1 );
   std::string const all = text( shown.stream() );
   EXPECT_EQ( all.find( '\033' ), std::string::npos );
   EXPECT_THAT( all, HasSubstr( "e?[2?         1  QA   MT" ) );
}

TEST( ShowTest, showsARestartedParticipantOnceAllOfItIsThere ) {
   Linux::RealActivity activity;
   Korv::Ptr< Mrp::MrpStatus > const status( new Mrp::MrpStatus( "status" ) );
   auto & vlans = *status->applicationIs( Mrp::MVRP )
                      ->attrDatabaseIs( Pelk::IntfId( "eth0" ) )
                      ->intfTypeApplicantIs( vlanType );
   vlans.mrpAttributeIs( 10 );
   Mrp::AttrLogMounts mounts;
   mounts.statusIs( status );
   auto const address = Linux::StreamAddress::fromText( "unix:" + testing::TempDir() + "mrp-show-" +
                                                        std::to_string( ::getpid() ) );
   std::optional< Linux::AttrLogServer > server;
   auto const serve = [&] {
      server.emplace(
         activity, address, [&]( auto & output ) { return mounts.mount( output ); },
         Linux::AttrLogServer::Options{ .bound = 2000, .sendBuffer = 4000 } );
   };
   ShowFilter const all;
   Command::ShowSource source( activity, address );
   EXPECT_THAT( source.failure(), HasSubstr( "No such file" ) );
   // How many attributes there are to be seen until there are so many.
   auto const seenUntil = [&]( std::size_t wanted ) {
      std::set< std::size_t > seen;
      for ( int i = 0; i < 5000 && !( source.isWhole() && seen.contains( wanted ) ); ++i ) {
         auto const & stream = source.stream( all );
         seen.insert( stream.isKnown ? stream.views.front().attributes.size() : 0 );
         activity.runFor( 0.001 );
      }
      return seen;
   };
   serve();
   EXPECT_THAT( seenUntil( 1 ), ElementsAre( 0, 1 ) );
   EXPECT_FALSE( source.hasChanged() );

   // What was known stays to be seen, and is replaced as a whole.
   server.reset();
   for ( U64 vlan = 1000; vlan < 3000; ++vlan ) {
      vlans.mrpAttributeIs( vlan );
   }
   serve();
   EXPECT_THAT( seenUntil( 2001 ), ElementsAre( 1, 2001 ) );
}

TEST( ShowTest, marksWhatIsNewForAMoment ) {
   Command::ShowFrame frame;
   // What stands out is in stars, and what else commands the terminal is left out.
   auto const picture = [&]( std::string const & one, std::string const & other, double now ) {
      std::string const drawn =
         frame.picture( "head", { { one }, { other } }, { .rows = 5, .columns = 8 }, now );
      return std::regex_replace( std::regex_replace( drawn, std::regex( "\033\\[7m" ), "*" ),
                                 std::regex( "\033\\[[0-9]*[A-Za-z]|\r" ), "" );
   };
   EXPECT_EQ( picture( "a  1", "b  1", 100 ), "*head    \na  1\nb  1" );
   EXPECT_FALSE( frame.isStale( 1000 ) );
   // Wider columns are nothing new.
   EXPECT_EQ( picture( "a   1", "bb  1", 101 ), "*head    \na   1\n*bb  1" );
   EXPECT_FALSE( frame.isStale( 102 ) );
   EXPECT_EQ( picture( "a   2", "bb  1", 102 ), "*head    \n*a   2\n*bb  1" );
   EXPECT_TRUE( frame.isStale( 102.5 ) );
   EXPECT_EQ( picture( "a   2", "bb  1", 102.5 ), "*head    \n*a   2\nbb  1" );
}

} // namespace

} // namespace CommandTest
