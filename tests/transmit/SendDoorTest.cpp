// The application's door: what each event that it sends becomes, and on which interfaces.
#include "tests/transmit/TransmitTest.h"

namespace TestSupport {
namespace {

using testing::ElementsAre;

constexpr unsigned leaveAllEvent = 6;
constexpr unsigned internalLeave = 7;

class SendDoor : public testing::Test {
 protected:
   Sender mvrp{ Mrp::MVRP, { et1, et2 } };
};

TEST_F( SendDoor, keepsTheValueThatWasSent ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .activity = &mvrp.activity() } );
   msrp.declare( et1, Listener{ 0x100, AskingFailed }, New );
   msrp.declare( et1, Listener{ 0x100, Ready }, JoinIn );
   EXPECT_EQ( hex( msrp.attribute( et1, listenerType, 0x100 )->value ),
              hex( stored( Listener{ 0x100, Ready } ) ) );
}

// Whatever is queued, the machines run on the interface of the parameters.
TEST_F( SendDoor, runsWhereTheParametersSayAndBorrowsTheParseContext ) {
   Mrp::MrpParseContext & context = *mvrp.sm().parseContext();
   context.intfIdIs( Pelk::IntfId( et2 ) );
   context.attributeTypeIs( 3 );
   context.attributeKeyIs( 77 );
   for ( unsigned event = 0; event <= 8; ++event ) {
      mvrp.declare( et1, Vlan{ 10 }, event, { et2 } );
      EXPECT_EQ( mvrp.states( et2, 10 ), "none" );
      EXPECT_EQ( context.intfId().stringValue(), et2 );
      EXPECT_EQ( context.attributeType(), 3 );
      EXPECT_EQ( context.attributeKey(), 77u );
   }
   mvrp.declare( et1, Vlan{ 10 }, New );
   mvrp.declare( et1, Vlan{ 10 }, internalLeave );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
}

TEST_F( SendDoor, usesUpTheQueueForAnEventThatItDoesNotKnow ) {
   for ( unsigned const event : { 2u, 4u, 8u } ) {
      mvrp.declare( et1, Vlan{ 10 }, event, { et1, et2 } );
      EXPECT_TRUE( mvrp.lib().mrpOutIntfQueue().empty() );
      EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   }
}

// A LeaveAll goes to each queued interface. What it puts off is the type that the parse context
// held and not the one that was sent, by the time of the interface that the context held.
TEST( SendDoorOfMsrp, sendsALeaveAllToEachQueuedInterface ) {
   Sender msrp( Mrp::MSRP, { et1, et2 } );
   msrp.config().intfLeaveAllTimeIs( Pelk::IntfId( et2 ), 7 );
   msrp.advanceTo( 4 );
   msrp.receive( et2, msrpFrame( domains( { 6, 3, 2 }, { In } ) ) );
   msrp.clear();
   msrp.declare( "Ethernet9", talker( 8 ), leaveAllEvent, { et1, et2 } );
   msrp.advanceTo( 11.2 );
   EXPECT_THAT( msrp.saidWithTimes(),
                ElementsAre( "4.1 Ethernet1: talker{LeaveAll}", "4.1 Ethernet2: talker{LeaveAll}",
                             "7 Ethernet2: talker{LeaveAll} failed{LeaveAll} listener{LeaveAll}",
                             "10 Ethernet1: talker{LeaveAll} failed{LeaveAll} listener{LeaveAll}",
                             "11 Ethernet2: domain{LeaveAll}", "11 Ethernet1: domain{LeaveAll}" ) );
}

} // namespace
} // namespace TestSupport
