// Which frames a participant takes in, how it counts them, and what flooding does with them.
#include "tests/support/Capture.h"
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";
std::string const et2 = "Ethernet2";

Frame joinVlan10() { return mvrpFrame( vlans( 10, { JoinIn } ) ); }

// The builder writes what a person would write.
TEST( FrameIntake, takesAFrameWrittenByHand ) {
   Bytes const byHand = fromHex( "01 80 c2 00 00 21  02 00 00 00 00 99  88 f5"
                                 "00                " // ProtocolVersion
                                 "01 02             " // vlanVector, 2 bytes a value
                                 "20 02  00 0a  2a  " // LeaveAll, 2 values from 10: JoinIn, JoinIn
                                 "00 00             "
                                 "00 00" );
   ASSERT_EQ( hex( mvrpFrame( vlans( 10, { JoinIn, JoinIn } ).leaveAll() ) ), hex( byHand ) );
   Participant mvrp( Mrp::MVRP );
   EXPECT_TRUE( mvrp.receive( et1, byHand ) );
   EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1",
                                                 "join vlan 11 JoinIn on Ethernet1" ) );
   EXPECT_EQ( says( byHand ), "vlan{LeaveAll 10 JoinIn, 11 JoinIn}" );
}

TEST( FrameIntake, goesByAddressAndType ) {
   struct Row {
      char const * what;
      Bytes frame;
      char const * moved;
      bool joins;
   };
   std::string const good = "numOfPktsProcessed=1 numOfJoinIndications=1";
   std::string const badType = "numOfIncorrectEtype=1 numOfPktsProcessed=1";
   std::string const badAddress = "numOfIncorrectDmac=1 numOfPktsProcessed=1";
   std::vector< Row > const rows = {
      { "its own", joinVlan10(), good.c_str(), true },
      { "tagged", joinVlan10().tag( 100 ), good.c_str(), true },
      { "tagged with priority", joinVlan10().tag( 0xe064 ), good.c_str(), true },
      { "two tags", joinVlan10().tag( 100 ).tag( 200 ), badType.c_str(), false },
      { "MSRP's type", joinVlan10().type( 0x22ea ), badType.c_str(), false },
      { "MSRP's type behind a tag", joinVlan10().type( 0x22ea ).tag( 1 ), badType.c_str(), false },
      { "another kind of tag", joinVlan10().type( 0x88a8 ), badType.c_str(), false },
      { "last byte of the address", joinVlan10().to( 0x0180'c200'0020 ), badAddress.c_str(),
        false },
      { "first byte of the address", joinVlan10().to( 0x0380'c200'0021 ), badAddress.c_str(),
        false },
      // The address is looked at first, and then no more.
      { "both wrong", joinVlan10().to( 1 ).type( 2 ), badAddress.c_str(), false },
      { "wrong address, tagged", joinVlan10().to( 1 ).tag( 100 ), badAddress.c_str(), false } };
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( Mrp::MVRP );
      EXPECT_TRUE( mvrp.receive( et1, row.frame ) );
      EXPECT_EQ( mvrp.moved(), row.moved );
      EXPECT_EQ( mvrp.attribute( et1, 10 ).has_value(), row.joins );
   }
}

TEST( FrameIntake, tracesTheVlanOfATagAndNotItsPriority ) {
   Participant mvrp( Mrp::MVRP );
   TraceCapture const traces( 1u << 6 );
   mvrp.receive( et1, joinVlan10().tag( 0xe064 ) );
   EXPECT_TRUE( traces.has( "Received 802.1Q-tagged frame with VLAN ID 100" ) );
}

TEST( FrameIntake, answersOnAllInterfacesAtTheEndOfAFrame ) {
   Participant mvrp( Mrp::MVRP, { et1, et2 } );
   mvrp.declare( et2, Vlan{ 7 }, JoinIn );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv } ) ) );
   EXPECT_THAT( mvrp.said(), testing::UnorderedElementsAre( "Ethernet1: vlan{10 Mt}",
                                                            "Ethernet2: vlan{7 JoinMt}",
                                                            "Ethernet2: vlan{7 JoinMt}" ) );
}

class Flooding : public testing::Test {
 protected:
   Participant msrp{ Mrp::MSRP, { et1, et2, "Ethernet3" }, { .configure = []( Mrp::MrpConfig & c ) {
                        c.mrpFloodingIs( true );
                     } } };
};

TEST_F( Flooding, floodsMalformedFramesToo ) {
   msrp.receive( et1, msrpFrame( Message( 9, 7, {} ) ) );
   EXPECT_EQ( msrp.sent().size(), 2u );
   EXPECT_EQ( msrp.moved(), "numOfMalformedPkts=1 numOfPktsProcessed=1" );
   msrp.clear();
   msrp.receive( et1, msrpFrame( talkers( 1, { New } ) ).to( 1 ) ); // not of the application
   EXPECT_THAT( msrp.sent(), IsEmpty() );
}

// The frame's attributes are not kept, so that the LeaveAll finds none of them declared.
TEST_F( Flooding, stillAppliesALeaveAll ) {
   msrp.config().mrpFloodingIs( false );
   msrp.receive( et1, msrpFrame( talkers( 0x100, { JoinIn } ) ) );
   msrp.config().mrpFloodingIs( true );
   msrp.clear();
   msrp.receive( et1, msrpFrame( talkers( 0x100, { JoinIn } ).leaveAll() ) );
   EXPECT_EQ( msrp.states( et1, talkerType, 0x100 ), "mrpVeryAnxiousObserver mrpLv" );
   EXPECT_EQ( msrp.sent().size(), 2u ); // the copies, and no answer
   msrp.advanceBy( 1 );
   EXPECT_THAT( msrp.indications(), ElementsAre( "leave talker 0x100 on Ethernet1" ) );
}

TEST( RecycledPkt, makesExactlyTheNextMrpduSayNothing ) {
   Participant mvrp( Mrp::MVRP );
   Bytes const frame = mvrpFrame( vlans( 10, { JoinIn, JoinIn } ).leaveAll() );
   mvrp.sm().recycledPktIs( true );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ).type( 2 ) ); // does not get that far
   EXPECT_TRUE( mvrp.sm().recycledPkt() );
   mvrp.advanceTo( 5 );
   mvrp.receive( et1, frame );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   EXPECT_EQ( mvrp.sm().parseContext()->eventsCounter(), 2u );
   EXPECT_FALSE( mvrp.sm().recycledPkt() );
   mvrp.advanceTo( 10 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{LeaveAll}" ) ); // not put off to 15
   mvrp.receive( et1, frame );
   EXPECT_EQ( mvrp.indications().size(), 2u );
}

} // namespace
} // namespace TestSupport
