// tshark reads what participants send: a reader of MRPDUs that shares nothing with this system.
#include "tests/command/CommandRun.h"
#include "tests/transmit/TransmitTest.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace CommandTest {
namespace {

using namespace TestSupport;

// Its words for an AttributeType: ours, and its name for the field that steps.
using Kind = std::pair< std::string, std::string >;
std::map< std::string, Kind > const kinds = { { "VLAN Identifier (1)", { "vlan", "VLAN ID" } },
                                              { "Talker Advertise (1)", { "talker", "Stream ID" } },
                                              { "Talker Failed (2)", { "failed", "Stream ID" } },
                                              { "Listener (3)", { "listener", "Stream ID" } },
                                              { "Domain (4)", { "domain", "SR Class ID" } } };

// "listener 0x102 JoinIn"
std::string words( std::string const & kind, U64 key, std::string const & event ) {
   std::ostringstream out;
   bool const isStream = kind != "vlan" && kind != "domain";
   out << kind << ' ' << ( isStream ? "0x" : "" ) << ( isStream ? std::hex : std::dec ) << key
       << ' ' << event;
   return out.str();
}

class TsharkTest : public CommandTest {
 protected:
   void SetUp() override {
      if ( std::system( "tshark --version > /dev/null 2>&1" ) != 0 ) {
         GTEST_SKIP() << "tshark is not installed";
      }
   }

   // The lines that tshark writes about the capture.
   std::vector< std::string > lines( std::string const & arguments ) const {
      std::string const command = "tshark -n -r '" + path( "sent.pcap" ) + "' " + arguments +
                                  " > '" + path( "out" ) + "' 2> /dev/null";
      EXPECT_EQ( std::system( command.c_str() ), 0 ) << command;
      std::ifstream out( path( "out" ) );
      std::vector< std::string > found;
      for ( std::string line; std::getline( out, line ); ) {
         found.push_back( line );
      }
      return found;
   }

   // The frames that tshark finds something wrong with, and what.
   std::vector< std::string > marks( std::vector< SentFrame > const & sent ) const {
      std::vector< Command::CapturedFrame > frames;
      for ( SentFrame const & frame : sent ) {
         frames.push_back( { static_cast< std::int64_t >( frame.time * 1e9 ), frame.bytes } );
      }
      Command::writeCapture( path( "sent.pcap" ), frames );
      auto found = lines( "-T fields -E separator=/s -e _ws.malformed -e _ws.expert.message" );
      EXPECT_EQ( found.size(), frames.size() );
      std::erase( found, " " );
      return found;
   }

   // All values that were sent, in the order of the frames; a LeaveAll stands ahead of its vector's
   // values.
   std::vector< std::string > values( Participant const & sender ) const {
      EXPECT_THAT( marks( sender.sent() ), testing::IsEmpty() );
      std::vector< std::string > read;
      Kind kind;
      U64 next = 0;
      std::size_t undeclared = 0; // the first value still without its declaration
      for ( std::string const & line : lines( "-O mrp-mvrp,mrp-msrp" ) ) {
         std::size_t const start = line.find_first_not_of( ' ' );
         std::size_t const colon = line.find( ": " );
         if ( colon == std::string::npos || start == 0 ) {
            continue;
         }
         std::string const field = line.substr( start, colon - start );
         std::string const value = line.substr( colon + 2 );
         std::size_t const bracket = value.find( " (" );
         std::string word = value.substr( 0, bracket );
         std::erase( word, ' ' ); // "Asking Failed"
         if ( field == "Attribute Type" ) {
            kind = kinds.at( value );
         } else if ( field == "Vector Header" ) {
            if ( value.ends_with( "Event: Leave All" ) ) {
               read.push_back( kind.first + " LeaveAll" );
            }
            undeclared = read.size();
         } else if ( field == "Attribute Event" ) {
            read.push_back( words( kind.first, next++, word ) );
         } else if ( field == "Declaration Type" ) {
            read.at( undeclared++ ) += ' ' + word;
         } else if ( field == kind.second ) {
            next = std::stoull( bracket == std::string::npos ? value : value.substr( bracket + 2 ),
                                nullptr, 0 );
         }
      }
      return read;
   }
};

// What it sends, value by value in the order of the frames.
struct Declaring : Sender {
   using Sender::Sender;
   std::vector< std::string > declared;
   Event next = New; // each event in turn
   void vlan( unsigned id ) { say( "vlan", Vlan{ static_cast< U16 >( id ) }, id ); }
   template < class Value >
   void say( char const * kind, Value const & value, U64 key, std::string const & more = "" ) {
      send( value, next );
      declared.push_back( words( kind, key, name( next ) ) + more );
      next = static_cast< Event >( ( next + 1 ) % 6 );
   }
};

void sendVlans( Declaring & mvrp ) {
   for ( unsigned n = 1; n <= 9; ++n ) {
      for ( unsigned i = 0; i < n; ++i ) {
         mvrp.vlan( 20 * n + i );
      }
   }
   for ( unsigned i = 0; i < 600; ++i ) {
      mvrp.vlan( 1 + 2 * i ); // a vector each
   }
   for ( unsigned id = 1; id <= 4094; ++id ) {
      mvrp.vlan( id );
   }
   mvrp.advanceBy( 0.5 );
}

void sendStreams( Declaring & msrp ) {
   for ( unsigned n = 1; n <= 9; ++n ) {
      U64 const first = 0x0200'0000'0001'0000 * n;
      for ( U64 key = first; key < first + n; ++key ) {
         msrp.say( "talker", talker( key ), key );
      }
      for ( U64 key = first; key < first + n; ++key ) {
         msrp.say( "failed", FailedTalker{ talker( key ) }, key );
      }
      for ( U64 key = first; key < first + n; ++key ) {
         auto const declaration = static_cast< Declaration >( ( key * 3 + n ) % 4 );
         msrp.say( "listener", Listener{ key, declaration }, key,
                   std::string( " " ) + name( declaration ) );
      }
      for ( U8 i = 0; i < n; ++i ) {
         msrp.say( "domain", Domain{ i, i }, i );
      }
   }
   for ( U64 i = 0; i < 120; ++i ) {
      msrp.say( "talker", talker( 3 * i ), 3 * i ); // a vector each
   }
   msrp.advanceBy( 0.5 );
}

TEST_F( TsharkTest, readsEveryValueThatWasSent ) {
   for ( U32 const mtu : { 1500u, 100u } ) {
      Declaring mvrp( Mrp::MVRP, { et1 }, { .mtu = mtu } );
      Declaring msrp( Mrp::MSRP, { et1 }, { .mtu = mtu } );
      sendVlans( mvrp );
      sendStreams( msrp );
      for ( Declaring * const sender : { &mvrp, &msrp } ) {
         SCOPED_TRACE( testing::Message() << int( sender->protocol() ) << " MTU " << mtu );
         EXPECT_EQ( values( *sender ), sender->declared );
      }
   }
}

TEST_F( TsharkTest, readsLeaveAllsAndTheirAnswers ) {
   // Left out: a LeaveAll alone behind several VLAN vectors of one frame, which overwrites them.
   Sender mvrp( Mrp::MVRP );
   mvrp.leaveAll( vlanType ).advanceBy( 0.5 );
   mvrp.mark().send( Vlan{ 10 }, JoinIn ).send( Vlan{ 11 }, Lv ).send( Vlan{ 20 }, In );
   mvrp.send( Vlan{ 30 }, JoinMt, true ).advanceBy( 0.5 ); // in a second frame
   EXPECT_THAT( values( mvrp ),
                testing::ElementsAre( "vlan LeaveAll", "vlan LeaveAll", "vlan 10 JoinIn",
                                      "vlan 11 Lv", "vlan 20 In", "vlan 30 JoinMt" ) );

   Sender msrp( Mrp::MSRP );
   msrp.declare( et1, Listener{ 5, AskingFailed }, New );
   msrp.advanceTo( 15 ); // past LeaveAlls of its own
   EXPECT_THAT(
      values( msrp ),
      testing::IsSupersetOf( { "listener 0x5 New AskingFailed", "listener 0x5 JoinMt AskingFailed",
                               "talker LeaveAll", "failed LeaveAll", "listener LeaveAll",
                               "domain LeaveAll" } ) );
}

TEST_F( TsharkTest, readsTheFieldsOfATalkerAndADomain ) {
   Sender msrp( Mrp::MSRP );
   Talker const t{ 0x0102'0304'0506'0708, 0x91e0'f000'fe01, 515, 1029, 1543, 0x70, 2057 };
   msrp.send( FailedTalker{ t, 0x1112'1314'1516'1718, 19 }, New ).send( Domain{ 6, 3, 77 }, New );
   msrp.mrpdu();
   EXPECT_THAT( marks( msrp.sent() ), testing::IsEmpty() );
   std::string fields = "-T fields -E separator=/s";
   for ( std::string const field :
         { "stream_id", "stream_da", "vlan_id", "tspec_max_frame_size", "tspec_max_interval_frames",
           "priority", "rank", "accumulated_latency", "failure_bridge_id", "failure_code",
           "sr_class_id", "sr_class_priority", "sr_class_vid" } ) {
      fields += " -e mrp-msrp." + field;
   }
   EXPECT_THAT(
      lines( fields ),
      testing::ElementsAre(
         "0x0102030405060708 91:e0:f0:00:fe:01 0x0203 1029 1543 3 1 2057 0x1112131415161718 19 "
         "6 3 77" ) );

   // And a damaged frame does get its mark.
   SentFrame cut = msrp.sent()[0];
   cut.bytes.resize( cut.bytes.size() - 12 );
   EXPECT_EQ( marks( { cut } ).size(), 1u );
}

} // namespace
} // namespace CommandTest
