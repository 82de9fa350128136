// The application's door: what each event that it sends becomes, and on which interfaces.
#include "tests/support/Capture.h"
#include "tests/transmit/TransmitTest.h"

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr unsigned leaveAllEvent = 6;

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

TEST_F( SendDoor, borrowsTheParseContext ) {
   Mrp::MrpParseContext & context = *mvrp.sm().parseContext();
   context.intfIdIs( Pelk::IntfId( et2 ) );
   context.attributeTypeIs( 3 );
   context.attributeKeyIs( 77 );
   for ( unsigned event = 0; event <= 8; ++event ) {
      mvrp.declare( et1, Vlan{ 10 }, event );
      EXPECT_EQ( context.intfId().stringValue(), et2 );
      EXPECT_EQ( context.attributeType(), 3 );
      EXPECT_EQ( context.attributeKey(), 77u );
   }
}

TEST_F( SendDoor, usesUpTheQueueForAnEventThatItDoesNotKnow ) {
   for ( unsigned const event : { 2u, 4u, 8u } ) {
      TraceCapture const traces( 1u << 4 );
      mvrp.declare( et1, Vlan{ 10 }, event, { et1, et2 } );
      std::string const line = std::string( "Event = " ) + static_cast< char >( event ) +
                               " not handled in sendAttributeIntf ";
      EXPECT_THAT( traces.lines(), ElementsAre( line, line ) );
      EXPECT_TRUE( mvrp.lib().mrpOutIntfQueue().empty() );
      EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   }
}

// A LeaveAll goes to each queued interface, and puts the own ones off by the time of the interface
// that the parse context held.
TEST_F( SendDoor, sendsALeaveAllToEachQueuedInterface ) {
   mvrp.config().intfLeaveAllTimeIs( Pelk::IntfId( et2 ), 7 );
   mvrp.advanceTo( 4 );
   mvrp.receive( et2, mvrpFrame( vlans( 10, { In } ) ) );
   mvrp.clear();
   mvrp.declare( "Ethernet9", Vlan{ 10 }, leaveAllEvent, { et1, et2 } );
   mvrp.advanceTo( 4.2 );
   EXPECT_THAT( mvrp.said(),
                UnorderedElementsAre( "Ethernet1: vlan{LeaveAll}", "Ethernet2: vlan{LeaveAll}" ) );
   mvrp.clear();
   mvrp.advanceTo( 10.9 );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.advanceTo( 11.1 );
   EXPECT_EQ( mvrp.said().size(), 2u );
}

// What is put off is the type that the parse context held, not the type that was sent.
TEST_F( SendDoor, putsOffTheTypeThatTheContextHeld ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .activity = &mvrp.activity() } );
   msrp.advanceTo( 4 );
   msrp.receive( et1, msrpFrame( domains( { 6, 3, 2 }, { In } ) ) );
   msrp.declare( et1, talker( 8 ), leaveAllEvent );
   msrp.advanceTo( 10.2 );
   EXPECT_THAT(
      msrp.saidWithTimes(),
      ElementsAre( "4.1 Ethernet1: talker{LeaveAll}",
                   "10 Ethernet1: talker{LeaveAll} failed{LeaveAll} listener{LeaveAll}" ) );
   msrp.clear();
   msrp.advanceTo( 14.2 );
   EXPECT_THAT( msrp.said(), ElementsAre( "Ethernet1: domain{LeaveAll}" ) );
}

} // namespace
} // namespace TestSupport
