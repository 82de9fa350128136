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

TEST( FrameIntake, goesByAddressAndType ) {
   struct Row {
      char const * what;
      std::string moved; // beside numOfPktsProcessed
      Frame frame;
   };
   TraceCapture const traces( 1u << 6 );
   std::string const badType = "numOfIncorrectEtype=1 ";
   std::string const badAddress = "numOfIncorrectDmac=1 ";
   for ( Row const & row :
         { Row{ "its own", "", joinVlan10() },
           Row{ "tagged, with priority", "", joinVlan10().tag( 0xe064 ) },
           Row{ "two tags", badType, joinVlan10().tag( 100 ).tag( 200 ) },
           Row{ "MSRP's type", badType, joinVlan10().type( 0x22ea ) },
           Row{ "MSRP's type behind a tag", badType, joinVlan10().type( 0x22ea ).tag( 1 ) },
           Row{ "another kind of tag", badType, joinVlan10().type( 0x88a8 ) },
           Row{ "last byte of the address", badAddress, joinVlan10().to( 0x0180'c200'0020 ) },
           Row{ "first byte of the address", badAddress, joinVlan10().to( 0x0380'c200'0021 ) },
           // The address is looked at first, and then no more.
           Row{ "both wrong", badAddress, joinVlan10().to( 1 ).type( 2 ) } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( Mrp::MVRP );
      EXPECT_TRUE( mvrp.receive( et1, row.frame ) );
      bool const isOwn = row.moved.empty();
      EXPECT_EQ( mvrp.moved(),
                 row.moved + "numOfPktsProcessed=1" + ( isOwn ? " numOfJoinIndications=1" : "" ) );
      EXPECT_EQ( mvrp.attribute( et1, 10 ).has_value(), isOwn );
   }
   EXPECT_EQ( traces.lines().at( 0 ), "Received 802.1Q-tagged frame with VLAN ID 100" );
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
   ASSERT_EQ( msrp.sent().size(), 2u );
   EXPECT_EQ( decode( msrp.sent()[0].bytes ).from,
              0x0200'0000'0001u ); // the port's that it came by
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
