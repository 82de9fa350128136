// What `mrp show` makes of a mirror: a participant publishes, its mirror is at the other end of a
// stream, and what is shown is read as people and programs read it.
#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include "command/CommandError.h"
#include "command/show/ShowFrame.h"
#include "command/show/ShowJson.h"
#include "command/show/ShowSource.h"
#include "command/show/ShowText.h"
#include "tests/command/CommandRun.h"
#include "tests/support/MirrorLine.h"
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <sys/socket.h>

namespace {

using namespace TestSupport;
using Command::ShowFilter;
using Command::ShowStream;
using testing::ElementsAre;
using testing::HasSubstr;
using Lines = std::vector< std::string >;

// A participant and the far end of its stream.
struct Shown {
   Shown( Mrp::MrpApplication application, std::vector< std::string > const & interfaces,
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
   std::string text( std::size_t width, ShowFilter const & filter = {} ) {
      std::ostringstream out;
      Command::writeShowText( std::vector{ stream( filter ) }, width, out );
      return out.str();
   }
   nlohmann::json json( ShowFilter const & filter = {} ) {
      std::ostringstream out;
      Command::writeShowJson( std::vector{ stream( filter ) }, Command::JsonForm::line, out );
      return nlohmann::json::parse( out.str() );
   }

   Participant participant;
   Mrp::AttrLogMounts mounts;
   std::optional< MirrorLine > line;
};

constexpr U64 id = 0x0200'0000'0001'0007;

Shown streams() { return Shown( Mrp::MSRP, { "eth0", "eth1" } ); }
void fill( Participant & msrp ) {
   msrp.receive( "eth0",
                 msrpFrame( domains( { 6, 3, 2 }, { JoinIn } ), talkers( talker( id ), { JoinIn } ),
                            failedTalkers( { talker( id + 16 ) }, { New } ) ) );
   msrp.declare( "eth0", Listener{ id, Ready }, JoinIn );
   msrp.declare( "eth1", Listener{ id + 1, AskingFailed }, JoinIn );
   msrp.advanceBy( 2 );
}

TEST( ShowTest, showsVlansInRowsThatTheyShare ) {
   Shown shown( Mrp::MVRP, { "eth1", "eth0" }, []( Mrp::MrpConfig & config ) {
      config.intfLeaveTimeIs( Pelk::IntfId( "eth1" ), 1.25 );
      config.txLeaveAllExpiryTimeIs( 2 );
   } );
   shown.participant.receive( "eth0", mvrpFrame( vlans( 10, { JoinIn, JoinIn, JoinIn } ) ) );
   shown.participant.declare( "eth1", Vlan{ 11 }, JoinIn );
   shown.participant.receive( "eth1", mvrpFrame( vlans( 4094, { JoinMt } ) ).version( 1 ) );
   shown.participant.advanceBy( 1 );
   shown.participant.attributeIs( "eth1", vlanType, 12, fromHex( "00 0c" ), Mrp::mrpQuietActive,
                                  Mrp::mrpLv );
   shown.participant.attributeIs( "eth1", vlanType, 13, fromHex( "0d" ), Mrp::mrpQuietObserver,
                                  Mrp::mrpMt );
   EXPECT_EQ( shown.text( 80 ),
              "MVRP at unix:/run/x.sock\n"
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
              "eth1        13  QO   MT   0d\n" );
}

TEST( ShowTest, showsStreamsInTheWidthThatThereIs ) {
   Shown shown = streams();
   fill( shown.participant );
   ShowFilter failed;
   failed.typeAdd( "Talker Failed" );
   auto const attributes = []( std::string const & text ) {
      return text.substr( text.find( "Talker Failed\n" ) );
   };
   EXPECT_EQ( attributes( shown.text( 80, failed ) ),
              "Talker Failed\n"
              "interface  stream                   app  reg  destination        VLAN  frames\n"
              "eth0       02:00:00:00:00:01:00:17  VO   IN   91:e0:f0:00:00:17     2  1000 x 1\n"
              "    priority 3, rank 1, latency 50000 ns, bridge 8000.02:00:00:00:00:01,\n"
              "    failure 8 (egress port is not AVB capable)\n" );
   EXPECT_THAT( shown.text( 200, failed ),
                HasSubstr( "  latency   bridge                  failure\n"
                           "eth0       02:00:00:00:00:01:00:17  VO   IN   91:e0:f0:00:00:17     2  "
                           "1000 x 1         3     1  50000 ns  8000.02:00:00:00:00:01  "
                           "8 (egress port is not AVB capable)\n" ) );
   std::string const all = shown.text( 80 );
   EXPECT_THAT( all, HasSubstr( "eth1       02:00:00:00:00:01:00:08  QA   MT   Asking Failed\n" ) );
   EXPECT_THAT( all, HasSubstr( "eth0       class A  AO   IN          3    2\n" ) );
   std::istringstream in( all );
   for ( std::string line; std::getline( in, line ); ) {
      EXPECT_LE( line.size(), 80u ) << line;
   }
}

TEST( ShowTest, tellsProgramsNumbersAsNumbers ) {
   Shown shown = streams();
   fill( shown.participant );
   auto const document = shown.json();
   ASSERT_EQ( document["participants"].size(), 1u );
   auto const & msrp = document["participants"][0];
   EXPECT_EQ( msrp["application"], "MSRP" );
   EXPECT_EQ( msrp["connected"], true );
   EXPECT_EQ( msrp["config"]["leaveTime"], 0.6 );
   EXPECT_EQ( msrp["counters"]["numOfPktsProcessed"], 1 );
   ASSERT_EQ( msrp["interfaces"].size(), 2u );
   EXPECT_EQ( msrp["interfaces"][0]["types"][0],
              nlohmann::json::parse( R"({"attributeType":1,"name":"Talker Advertise",
                 "leaveAllPeriod":10.0,"declared":0,"registered":1,"leaving":0})" ) );
   std::vector< nlohmann::json > fields;
   for ( auto const & attribute : msrp["attributes"] ) {
      fields.push_back( attribute["fields"] );
   }
   EXPECT_THAT(
      fields,
      ElementsAre(
         nlohmann::json::parse( R"({"stream":"02:00:00:00:00:01:00:07","vlan":2,"priority":3,
            "destination":"91:e0:f0:00:00:07","rank":1,"maxFrameSize":1000,"maxIntervalFrames":1,
            "accumulatedLatency":50000})" ),
         nlohmann::json::parse( R"({"stream":"02:00:00:00:00:01:00:17","vlan":2,"priority":3,
            "destination":"91:e0:f0:00:00:17","rank":1,"maxFrameSize":1000,"maxIntervalFrames":1,
            "accumulatedLatency":50000,"bridge":"8000.02:00:00:00:00:01","failureCode":8})" ),
         nlohmann::json::parse( R"({"stream":"02:00:00:00:00:01:00:07","declaration":"ready"})" ),
         nlohmann::json::parse( R"({"srClass":6,"priority":3,"vlan":2})" ),
         nlohmann::json::parse(
            R"({"stream":"02:00:00:00:00:01:00:08","declaration":"askingFailed"})" ) ) );
   auto const & listener = msrp["attributes"][2];
   EXPECT_EQ( listener["key"], "144115188075921415" );
   EXPECT_EQ( listener["applicantState"], "mrpQuietActive" );
   EXPECT_EQ( listener["applicant"], "QA" );
   EXPECT_EQ( listener["value"], "020000000001000702000000" );

   // Of what is not known yet there is the same, with nothing in it.
   std::ostringstream out;
   ShowStream const none{ "tcp:127.0.0.1:7", false, "Connection refused", false, {} };
   Command::writeShowJson( std::vector{ none }, Command::JsonForm::line, out );
   auto const empty = nlohmann::json::parse( out.str() )["participants"][0];
   EXPECT_EQ( empty["problem"], "Connection refused" );
   auto const names = []( nlohmann::json const & object ) {
      std::set< std::string > all;
      for ( auto const & [name, value] : object.items() ) {
         all.insert( name );
      }
      return all;
   };
   EXPECT_EQ( names( empty ), names( msrp ) );
}

TEST( ShowTest, filtersByAnyOfAKindAndAllOfDifferentKinds ) {
   Shown shown = streams();
   fill( shown.participant );
   // The attributes that are left, as "INTERFACE TYPE".
   auto const left = [&]( Lines const & interfaces, Lines const & types, Lines const & states ) {
      ShowFilter filter;
      filter.interfaces.insert( interfaces.begin(), interfaces.end() );
      for ( auto const & type : types ) {
         filter.typeAdd( type );
      }
      for ( auto const & state : states ) {
         filter.stateAdd( state );
      }
      Lines lines;
      ShowStream const stream = shown.stream( filter );
      for ( auto const & attribute : stream.views.front().attributes ) {
         lines.push_back( attribute.interface + " " + std::to_string( attribute.attributeType ) );
      }
      return lines;
   };
   EXPECT_THAT( left( {}, {}, {} ),
                ElementsAre( "eth0 1", "eth0 2", "eth0 3", "eth0 4", "eth1 3" ) );
   EXPECT_THAT( left( { "eth1" }, {}, {} ), ElementsAre( "eth1 3" ) );
   EXPECT_THAT( left( { "eth1", "eth0", "eth7" }, { "listener" }, {} ),
                ElementsAre( "eth0 3", "eth1 3" ) );
   EXPECT_THAT( left( {}, { "talker-failed", "4" }, {} ), ElementsAre( "eth0 2", "eth0 4" ) );
   EXPECT_THAT( left( {}, { "vlan" }, {} ), ElementsAre() );
   EXPECT_THAT( left( {}, {}, { "qa" } ), ElementsAre( "eth0 3", "eth1 3" ) );
   EXPECT_THAT( left( {}, {}, { "QA", "IN" } ), ElementsAre() );
   EXPECT_THAT( left( {}, {}, { "VO", "IN", "AO" } ), ElementsAre( "eth0 1", "eth0 2", "eth0 4" ) );
   // What is counted does not depend on the states that are asked for.
   ShowFilter leaving;
   leaving.stateAdd( "LV" );
   leaving.typeAdd( "3" );
   auto const interfaces = shown.stream( leaving ).views.front().interfaces;
   ASSERT_EQ( interfaces.at( 1 ).types.size(), 1u );
   EXPECT_EQ( interfaces.at( 1 ).types.front().declared, 1u );

   auto const outcome = CommandTest::mrp( { "show", "--type", "stream", "/none" } );
   EXPECT_EQ( outcome.status, 2 );
   EXPECT_EQ( outcome.err, "mrp: --type: 'stream' is no attribute type: VLAN (1), Talker Advertise "
                           "(1), Talker Failed (2), Listener (3), Domain (4)\n" );
   EXPECT_THAT( CommandTest::mrp( { "show", "--state", "XX" } ).err,
                HasSubstr( "'XX' is no state: IN, LV, MT of the registrar, VO, " ) );
   EXPECT_THAT( CommandTest::mrp( { "show", "--metrics", "--watch" } ).err,
                HasSubstr( "--metrics goes with neither" ) );
   EXPECT_EQ( CommandTest::mrp( { "show", "/none/mrp.sock" } ).err,
              "mrp: unix:/none/mrp.sock: cannot connect: No such file or directory\n" );
}

TEST( ShowTest, keepsNamesFromCommandingTheTerminal ) {
   Shown shown( Mrp::MVRP, { "e\033[2\xC2\x9B" } );
   shown.participant.declare( "e\033[2\xC2\x9B", Vlan{ 1 }, JoinIn );
   shown.participant.advanceBy( 1 );
   std::string const text = shown.text( 80 );
   EXPECT_EQ( text.find( '\033' ), std::string::npos );
   EXPECT_THAT( text, HasSubstr( "e?[2?         1  QA   MT" ) );
}

// However the stream is cut: what has been told of has been brought exactly when nothing is
// missing below it.
TEST( ShowTest, takesNoPartOfACopyForAWholeOne ) {
   Shown shown( Mrp::MVRP, { "eth0", "eth1" } );
   shown.participant.receive( "eth0", mvrpFrame( vlans( 1, std::vector( 40, JoinIn ) ) ) );
   shown.participant.receive( "eth1", mvrpFrame( vlans( 9, { JoinIn } ) ) );
   shown.participant.advanceBy( 2 );
   std::string const whole = treeText( shown.participant.status() );
   MirrorLine line( shown.mounts, 300 );
   std::size_t brought = 0;
   while ( !line.output().idle() ) {
      EXPECT_TRUE( !line.mirror().isBrought() || treeText( line.mirror().status() ) == whole );
      line.move( 7 );
      brought += line.mirror().isBrought() ? 1 : 0;
   }
   EXPECT_GT( brought, 0u );
   EXPECT_TRUE( line.mirror().isBrought() );
   line.connect();
   EXPECT_FALSE( line.mirror().isBrought() );
}

TEST( ShowTest, followsAParticipantThatRestarts ) {
   Linux::RealActivity activity;
   Korv::Ptr< Mrp::MrpStatus > const status( new Mrp::MrpStatus( "status" ) );
   Mrp::AttrLogMounts mounts;
   mounts.statusIs( status );
   auto const address = Linux::StreamAddress::fromText( "unix:" + testing::TempDir() + "mrp-show-" +
                                                        std::to_string( ::getpid() ) );
   auto const serve = [&] {
      return std::make_unique< Linux::AttrLogServer >(
         activity, address, [&]( auto & output ) { return mounts.mount( output ); },
         Linux::AttrLogServer::Options{ .bound = 2000, .sendBuffer = 4000 } );
   };
   auto const runUntil = [&]( auto const & condition ) {
      for ( int i = 0; i < 5000; ++i ) {
         if ( condition() ) {
            return true;
         }
         activity.runFor( 0.001 );
      }
      return false;
   };
   ShowFilter const all;
   Command::ShowSource source( activity, address );
   EXPECT_THAT( source.failure(), HasSubstr( "No such file" ) );
   EXPECT_FALSE( source.stream( all ).isKnown );

   auto server = serve();
   auto & vlans = *status->applicationIs( Mrp::MVRP )
                      ->attrDatabaseIs( Pelk::IntfId( "eth0" ) )
                      ->intfTypeApplicantIs( vlanType );
   vlans.mrpAttributeIs( 10 );
   ASSERT_TRUE( runUntil( [&] { return source.hasChanged() && source.stream( all ).isKnown; } ) );
   EXPECT_EQ( source.stream( all ).views.front().attributes.size(), 1u );
   EXPECT_FALSE( source.hasChanged() );
   vlans.mrpAttributeIs( 11 );
   ASSERT_TRUE( runUntil( [&] { return source.hasChanged(); } ) );
   EXPECT_EQ( source.stream( all ).views.front().attributes.size(), 2u );

   // What was known stays to be seen, and is replaced as a whole.
   auto const shown = [&] { return source.stream( all ).views.front().attributes.size(); };
   server.reset();
   ASSERT_TRUE( runUntil( [&] { return source.hasChanged(); } ) );
   EXPECT_FALSE( source.stream( all ).connected );
   EXPECT_EQ( shown(), 2u );
   for ( U64 vlan = 1000; vlan < 3000; ++vlan ) {
      vlans.mrpAttributeIs( vlan );
   }
   server = serve();
   bool isPart = false;
   ASSERT_TRUE( runUntil( [&] {
      isPart = isPart || ( shown() != 2 && shown() != 2002 );
      return source.isWhole();
   } ) );
   EXPECT_FALSE( isPart );
   EXPECT_TRUE( source.stream( all ).connected );
   EXPECT_EQ( shown(), 2002u );
}

// A picture as lines: what stands out is in stars, and what clears the screen is left out.
Lines pictured( Command::ShowFrame & frame, Lines const & texts, Command::ScreenSize size,
                double now ) {
   Command::ShowLines lines;
   for ( std::string const & text : texts ) {
      lines.push_back( { text } );
   }
   std::string picture = frame.picture( "head", lines, size, now );
   auto const replaceAll = [&]( std::string const & from, std::string const & to ) {
      for ( auto at = picture.find( from ); at != picture.npos; at = picture.find( from, at ) ) {
         picture.replace( at, from.size(), to );
         at += to.size();
      }
   };
   for ( auto const * const nothing :
         { "\033[H", "\033[K", "\033[J", "\033[0m", "\033[1m", "\r" } ) {
      replaceAll( nothing, "" );
   }
   replaceAll( "\033[7m", "*" );
   Lines drawn;
   std::istringstream in( picture );
   for ( std::string line; std::getline( in, line ); ) {
      drawn.push_back( line );
   }
   return drawn;
}

TEST( ShowTest, marksWhatIsNewForAMoment ) {
   Command::ShowFrame frame;
   Command::ScreenSize const size{ 5, 8 };
   EXPECT_THAT( pictured( frame, { "a  1", "b  1" }, size, 100 ),
                ElementsAre( "*head    ", "a  1", "b  1" ) );
   EXPECT_FALSE( frame.isStale( 1000 ) );
   // Wider columns are nothing new.
   EXPECT_THAT( pictured( frame, { "a   1", "bb  1" }, size, 101 ),
                ElementsAre( "*head    ", "a   1", "*bb  1" ) );
   EXPECT_FALSE( frame.isStale( 102 ) );
   EXPECT_THAT( pictured( frame, { "a   2", "bb  1" }, size, 102 ),
                ElementsAre( "*head    ", "*a   2", "*bb  1" ) );
   EXPECT_TRUE( frame.isStale( 102.5 ) );
   EXPECT_THAT( pictured( frame, { "a   2", "bb  1" }, size, 102.5 ),
                ElementsAre( "*head    ", "*a   2", "bb  1" ) );
}

TEST( ShowTest, fitsTheTerminalAndSaysWhatIsHidden ) {
   Command::ShowFrame frame;
   Lines const lines{ "1", "2", "3", "4", "5 is a long line" };
   auto const drawn = [&]( std::size_t rows ) {
      auto all = pictured( frame, lines, { rows, 40 }, 0 );
      all.erase( all.begin() );
      return all;
   };
   EXPECT_THAT( drawn( 6 ), ElementsAre( "1", "2", "3", "4", "5 is a long line" ) );
   EXPECT_THAT( drawn( 5 ), ElementsAre( "1", "2", "3", "... 2 more lines below, 0 above" ) );
   frame.scroll( 1 );
   EXPECT_THAT( drawn( 5 ), ElementsAre( "2", "3", "4", "... 1 more lines below, 1 above" ) );
   frame.scroll( 100 );
   EXPECT_THAT( drawn( 4 ),
                ElementsAre( "4", "5 is a long line", "... 0 more lines below, 3 above" ) );
   frame.scroll( -1 );
   EXPECT_THAT( drawn( 4 ), ElementsAre( "3", "4", "... 1 more lines below, 2 above" ) );
   frame.scroll( -100 );
   EXPECT_THAT( drawn( 4 ).front(), "1" );
   EXPECT_EQ( drawn( 1 ).size(), 1u );
   EXPECT_EQ( pictured( frame, lines, { 6, 4 }, 0 ).back(), "5 is" );
}

} // namespace
