// A participant in standby and its end, interfaces that come and go, and the fields through which
// an application sees each value.
#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";
std::string const et2 = "Ethernet2";
Pelk::IntfId const ethernet1( et1 );
Pelk::IntfId const ethernet2( et2 );

void end( Participant & participant ) {
   participant.sm().standbyModeIs( false );
   participant.sm().handleStandbyMode();
}

// As left in the tree by whoever was active before.
TEST( Standby, endsWithWhatTheTreeHoldsAndCountersAtZero ) {
   Participant msrp( Mrp::MSRP, { et1, et2 }, { .standby = true } );
   auto const isKnown = [&]( std::string const & interface, auto const & value, U64 key ) {
      msrp.attributeIs( interface, value.type, key, stored( value ), Mrp::mrpAnxiousObserver,
                        Mrp::mrpIn );
   };
   isKnown( et1, talker( 0x100 ), 0x100 );
   isKnown( et1, talker( 0x200 ), 0x200 );
   isKnown( et1, Domain{ 6, 3, 2 }, 6 );
   isKnown( et2, Listener{ 0x100 }, 0x100 );
   msrp.sm().mrpAttrIterDelAll(); // the tree alone knows them
   msrp.advanceTo( 5 );
   end( msrp );
   Korv::forEachScalar( msrp.counters(), []( char const * counter, U64 value ) {
      EXPECT_EQ( value, 0u ) << counter;
   } );
   // The period starts now. What was known is asked for, and then forgotten.
   msrp.advanceTo( 14.8 );
   EXPECT_THAT( msrp.said(), IsEmpty() );
   msrp.advanceTo( 15.2 );
   EXPECT_THAT(
      msrp.said(),
      ElementsAre( "Ethernet1: talker{LeaveAll 0x100 In; 0x200 In} failed{LeaveAll} "
                   "listener{LeaveAll} domain{LeaveAll 6 In}",
                   "Ethernet2: talker{LeaveAll} failed{LeaveAll} listener{LeaveAll 0x100 In "
                   "Ready} domain{LeaveAll}" ) );
   msrp.advanceTo( 17 );
   EXPECT_EQ( msrp.counters().numOfLeaveIndications(), 4u );
   EXPECT_TRUE( msrp.sm().mrpAttrIter().empty() );
}

TEST( Standby, closesAnInterfaceWithoutALeaveAllMachine ) {
   Participant mvrp( Mrp::MVRP, { et1 }, { .standby = true } );
   mvrp.sm().desiredIntfDir()->intfDesiredDel( ethernet1 );
   EXPECT_FALSE( mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
   end( mvrp ); // with no interfaces there is nothing to switch
   mvrp.advanceTo( 11 );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   EXPECT_EQ( mvrp.states( et1, 10 ), "mrpAnxiousObserver mrpIn" );
}

TEST( Interfaces, comeAndGo ) {
   Participant mvrp( Mrp::MVRP, { et1, et2 }, { .enabled = false } );
   Bytes const join = mvrpFrame( vlans( 10, { JoinIn } ) );
   EXPECT_FALSE( mvrp.receive( et1, join ) );
   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   mvrp.lib().mrpInterfaceEnable( ethernet1 ); // again: nothing
   mvrp.lib().mrpInterfaceEnable( ethernet2 );
   mvrp.receive( et1, join );
   mvrp.receive( et2, join );
   mvrp.advanceTo( 1 );
   mvrp.declare( et1, Vlan{ 20 }, New );
   mvrp.clear();

   // What stood in the frames still leaves; the application is not told.
   mvrp.lib().mrpInterfaceDisable( ethernet1 );
   mvrp.lib().mrpInterfaceDisable( ethernet1 ); // again: nothing
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{20 New}", "Ethernet1: vlan{20 New}" ) );
   EXPECT_FALSE( mvrp.receive( et1, join ) );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   EXPECT_EQ( mvrp.states( et2, 10 ), "mrpAnxiousObserver mrpIn" );

   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   mvrp.receive( et1, join );
   EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1" ) );
}

// The machine that ends has closed before its successor opens, also in the middle of its work.
TEST( Interfaces, openedAnewOverALeavingFrameHaveTheirLeaveAll ) {
   Participant mvrp( Mrp::MVRP, { et1 } );
   mvrp.declare( et1, Vlan{ 10 }, New );
   bool reopened = false;
   mvrp.host().onTransmit( [&]( Pelk::IntfId const &, Memory::FrameBytes ) {
      if ( !std::exchange( reopened, true ) ) {
         mvrp.lib().mrpInterfaceDisable( ethernet1 );
         mvrp.lib().mrpInterfaceEnable( ethernet1 );
      }
   } );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   EXPECT_TRUE( reopened );
   EXPECT_TRUE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 ) );
}

// A subclass that overrides the mutators sees a value each time that it is written, and so when a
// LeaveAll of our own loads it from the database.
TEST( Fields, areWrittenThroughTheirVirtualMutators ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Listener{ 0x300 }, New );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   msrp.advanceTo( 1 );
   msrp.lib().countingMutators = true;
   msrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   EXPECT_THAT( msrp.lib().mutatorCalls,
                ElementsAre( "msrpListenerVectorRxIs", "msrpListenerVectorTxIs",
                             "msrpDomainVectorRxIs", "msrpDomainVectorTxIs" ) );
   EXPECT_EQ( hex( msrp.lib().rxValue( domainType ) ), "06 03 00 02" );
   EXPECT_EQ( hex( msrp.lib().rxValue( listenerType ) ), hex( stored( Listener{ 0x300 } ) ) );
}

} // namespace
} // namespace TestSupport
