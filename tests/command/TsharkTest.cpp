// tshark reads what participants send: a reader of MRPDUs that shares nothing with this system. It
// must find nothing wrong, and read the same as the tests' own reader.
#include "tests/command/CommandRun.h"
#include "tests/transmit/TransmitTest.h"

#include <fstream>
#include <regex>

namespace CommandTest {
namespace {

using namespace TestSupport;

// Of each vector its LeaveAll mark and number of values, then all events and all declarations, in
// the order of the frame and apart as tshark has them.
std::string numbersOf( Decoded const & frame ) {
   std::string leaveAlls, sizes, events, declarations;
   for ( DecodedMessage const & message : frame.messages ) {
      bool const isListener = frame.protocol == Protocol::msrp && message.type == listenerType;
      for ( DecodedVector const & vector : message.vectors ) {
         leaveAlls += vector.leaveAll ? "1," : "0,";
         sizes += std::to_string( vector.values.size() ) + ',';
         for ( Declared const & value : vector.values ) {
            events += std::to_string( value.event ) + ',';
            declarations += isListener ? std::to_string( value.declaration ) + ',' : "";
         }
      }
   }
   return std::regex_replace( leaveAlls + ' ' + sizes + ' ' + events + ' ' + declarations,
                              std::regex( ",( |$)" ), "$1" );
}

class TsharkTest : public CommandTest {
 protected:
   void SetUp() override {
      if ( std::system( "tshark --version > /dev/null 2>&1" ) != 0 ) {
         GTEST_SKIP() << "tshark is not installed";
      }
   }
   // What stands in these fields, a line for each frame.
   Lines fields( std::vector< SentFrame > const & sent, Lines const & names ) const {
      std::vector< Command::CapturedFrame > frames;
      for ( SentFrame const & frame : sent ) {
         frames.push_back( { 0, frame.bytes } );
      }
      std::string command =
         "tshark -n -r '" + capture( "sent.pcap", frames ) + "' -T fields -E separator=/s";
      for ( std::string const & name : names ) {
         command += " -e " + name;
      }
      command += " > '" + path( "out" ) + "' 2> /dev/null";
      EXPECT_EQ( std::system( command.c_str() ), 0 ) << command;
      std::ifstream out( path( "out" ) );
      Lines lines;
      for ( std::string line; std::getline( out, line ); ) {
         lines.push_back( line );
      }
      return lines;
   }
   // The frames that tshark finds something wrong with, and what.
   Lines faults( std::vector< SentFrame > const & sent ) const {
      Lines found = fields( sent, { "_ws.malformed", "_ws.expert.message" } );
      EXPECT_EQ( found.size(), sent.size() );
      std::erase( found, " " );
      return found;
   }
   void expectReadAlike( Participant const & sender ) const {
      EXPECT_THAT( faults( sender.sent() ), testing::IsEmpty() );
      std::string const in = sender.protocol() == Protocol::mvrp ? "mrp-mvrp." : "mrp-msrp.";
      Lines expected;
      for ( SentFrame const & frame : sender.sent() ) {
         expected.push_back( numbersOf( decode( frame.bytes ) ) );
      }
      EXPECT_EQ(
         fields( sender.sent(), { in + "leave_all_event", in + "number_of_values",
                                  in + "three_packed_event", "mrp-msrp.four_packed_event" } ),
         expected );
   }
};

TEST_F( TsharkTest, readsEveryValueAndEveryLeaveAll ) {
   for ( U32 const mtu : { 1500u, 100u } ) {
      SCOPED_TRACE( mtu );
      unsigned next = 0;
      auto const event = [&] { return next++ % 6; }; // each in turn
      // Left out: a LeaveAll alone behind several VLAN vectors of one frame, which overwrites them.
      Sender mvrp( Mrp::MVRP, { et1 }, { .mtu = mtu } );
      mvrp.leaveAll( vlanType ).advanceBy( 0.5 );
      mvrp.mark();
      for ( U16 i = 0; i < 4694; ++i ) {
         // The first ones in a vector each.
         mvrp.send( Vlan{ static_cast< U16 >( i < 600 ? 2 * i : i - 599 ) }, event() );
      }
      mvrp.advanceBy( 0.5 );
      expectReadAlike( mvrp );

      Sender msrp( Mrp::MSRP, { et1 }, { .mtu = mtu } );
      for ( U8 n = 1; n <= 9; ++n ) {
         U64 const first = 0x0200'0000'0001'0000 * n;
         for ( U64 key = first; key < first + n; ++key ) {
            auto const declaration = static_cast< Declaration >( ( key * 3 + n ) % 4 );
            msrp.send( talker( key ), event() );
            msrp.send( FailedTalker{ talker( key ) }, event() );
            msrp.send( Listener{ key, declaration }, event() );
            msrp.send( Domain{ static_cast< U8 >( key ), n }, event() );
         }
      }
      msrp.declare( et1, Listener{ 5, AskingFailed }, New );
      msrp.advanceTo( 15 ); // past LeaveAlls of its own
      expectReadAlike( msrp );
   }
}

TEST_F( TsharkTest, readsTheFieldsOfATalkerAndADomain ) {
   Sender msrp( Mrp::MSRP );
   Talker const t{ 0x0102'0304'0506'0708, 0x91e0'f000'fe01, 515, 1029, 1543, 0x70, 2057 };
   msrp.send( FailedTalker{ t, 0x1112'1314'1516'1718, 19 }, New ).send( Domain{ 6, 3, 77 }, New );
   msrp.mrpdu();
   EXPECT_THAT(
      fields( msrp.sent(),
              { "mrp-msrp.stream_id", "mrp-msrp.stream_da", "mrp-msrp.vlan_id",
                "mrp-msrp.tspec_max_frame_size", "mrp-msrp.tspec_max_interval_frames",
                "mrp-msrp.priority", "mrp-msrp.rank", "mrp-msrp.accumulated_latency",
                "mrp-msrp.failure_bridge_id", "mrp-msrp.failure_code", "mrp-msrp.sr_class_id",
                "mrp-msrp.sr_class_priority", "mrp-msrp.sr_class_vid" } ),
      testing::ElementsAre(
         "0x0102030405060708 91:e0:f0:00:fe:01 0x0203 1029 1543 3 1 2057 0x1112131415161718 19 "
         "6 3 77" ) );

   // And a damaged frame does get its mark.
   SentFrame cut = msrp.sent()[0];
   cut.bytes.resize( cut.bytes.size() - 12 );
   EXPECT_EQ( faults( { cut } ).size(), 1u );
}

} // namespace
} // namespace CommandTest
