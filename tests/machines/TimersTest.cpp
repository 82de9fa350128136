// When a registration ends: after a Lv each attribute waits on a timer of its own, after a
// LeaveAll all of a type wait on one. And what a LeaveAll leaves alone; when it comes is told by
// the scenarios.
#include "tests/machines/MachinesTest.h"

#include <sstream>

namespace TestSupport {
namespace {

using namespace Mrp;
using testing::ElementsAre;

// The leaves told of: "10 at 3, 11 at 4".
std::string left( Participant & mvrp ) {
   std::ostringstream out;
   for ( Indication const & indication : mvrp.lib().indications ) {
      if ( !indication.join ) {
         out << ( out.tellp() > 0 ? ", " : "" ) << indication.key << " at " << indication.time;
      }
   }
   return out.str();
}

// 10 and 11 are registered from 0 on; the leave time is 2 but behind a LeaveAll of our own, which
// is far off. What arrives: "1 Lv 10", at 1 a Lv for 10; "1 LeaveAll 0".
TEST( Leave, endsARegistrationOneLeaveTimeAfterItsCause ) {
   struct Row {
      char const * what;
      char const * arrivals;
      char const * left;
   };
   for ( Row const & row :
         { Row{ "a Lv", "1 Lv 10", "10 at 3" },
           { "a second Lv changes nothing", "1 Lv 10  2 Lv 10", "10 at 3" },
           { "each Lv has a timer of its own", "1 Lv 11  2 Lv 10", "11 at 3, 10 at 4" },
           { "a LeaveAll", "1 LeaveAll 0", "10 at 3, 11 at 3" },
           { "a second LeaveAll changes nothing", "1 LeaveAll 0  2 LeaveAll 0",
             "10 at 3, 11 at 3" },
           { "one that waits anew postpones all", "1 LeaveAll 0  1.5 JoinIn 10  2 LeaveAll 0",
             "10 at 4, 11 at 4" },
           { "on both timers the earlier counts, and it is told once", "1 Lv 10  2 LeaveAll 0",
             "10 at 3, 11 at 4" },
           { "on both timers, the LeaveAll first", "1 LeaveAll 0  2 Lv 10", "10 at 3, 11 at 3" },
           { "a join ends the wait on both", "1 Lv 10  1.2 LeaveAll 0  1.5 JoinIn 10",
             "11 at 3.2" },
           { "a join, and a Lv anew", "1 Lv 10  1.5 JoinMt 10  2 Lv 10", "10 at 4" } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( MVRP );
      mvrp.config().leaveTimeIs( 2 );
      mvrp.config().txLeaveAllExpiryTimeIs( 5 );
      mvrp.config().leaveAllTimeIs( 100 );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
      std::istringstream arrivals( row.arrivals );
      double time = 0;
      std::string event;
      for ( U16 vlan = 0; arrivals >> time >> event >> vlan; ) {
         mvrp.advanceTo( time );
         Vector const attribute = vlans( vlan, { event == "Lv"       ? Lv
                                                 : event == "JoinIn" ? JoinIn
                                                                     : JoinMt } );
         mvrp.receive( et1, mvrpFrame( event == "LeaveAll" ? vlanLeaveAll() : attribute ) );
      }
      mvrp.advanceTo( 9 );
      EXPECT_EQ( left( mvrp ), row.left );
      // Once fired, the machines are gone.
      EXPECT_EQ( mvrp.sm().registrarSm()->explicitLeaveSm().size(), 0u );
      EXPECT_EQ( mvrp.sm().registrarSm()->leaveSm().size(), 0u );
   }
}

// What is marked for deletion is not there for a LeaveAll of our own, posted or out of turn, nor
// for one that is received.
TEST( LeaveAll, passesOverWhatIsMarkedForDeletion ) {
   Participant mvrp( MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.advanceTo( 1 );
   mvrp.lib().mrpCleanUpIntfDatabaseAttribute( id( et1 ), vlanType, 10 );
   post( mvrp, txLvAll, regTxLvAll );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
   mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
   EXPECT_THAT( mvrp.said(),
                ElementsAre( "Ethernet1: vlan{11 In; LeaveAll 11 Mt}", "Ethernet1: vlan{11 Mt}" ) );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   auto const * const index = mvrp.sm().mrpAttrIter( { id( et1 ), vlanType } );
   EXPECT_EQ( index->attributeKey().size(), 1u );
}

// A leave machine of one attribute goes at once; the shared one fires, and finds nothing.
TEST( Timers, tellNothingOfAnInterfaceThatWasDisabled ) {
   Participant mvrp( MVRP, { et1, "Ethernet2" } );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv } ) ) );
   mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
   mvrp.clear();
   ASSERT_EQ( waitsOn( mvrp, 10 ), "explicit shared" );
   mvrp.lib().mrpInterfaceDisable( id( et1 ) );
   EXPECT_TRUE( mvrp.sm().registrarSm()->explicitLeaveSm().empty() );
   EXPECT_EQ( waitsOn( mvrp, 10 ), "shared" );
   auto const * const published = mvrp.status().application( MVRP );
   EXPECT_EQ( published->leaveAllTime( { id( et1 ), vlanType } ), 0 );
   EXPECT_FALSE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( id( et1 ) ) );
   mvrp.advanceTo( 11 );
   EXPECT_TRUE( mvrp.sm().registrarSm()->leaveSm().empty() );
   EXPECT_EQ( mvrp.moved(), "" );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet2: vlan{LeaveAll}" ) );
}

// A frame that came during standby still waits, and a leave reads it before it is told of. Over it
// the application closes the interface and opens it anew: that one is alive like any other.
TEST( Leave, leavesAnInterfaceAliveThatAFrameHasReopened ) {
   Participant mvrp( MVRP, { et1 }, { .standby = true } );
   // Each arrival brings the one before it.
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.sm().standbyModeIs( false );
   mvrp.sm().handleStandbyMode();
   mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv, Lv } ) ) );
   mvrp.receive( et1, mvrpFrame( vlans( 20, { JoinIn } ) ) );
   ASSERT_EQ( mvrp.states( et1, 11 ), "mrpVeryAnxiousObserver mrpLv" );
   mvrp.lib().react = [&]( Indication const & indication ) {
      ASSERT_EQ( indication.key, 20u );
      mvrp.lib().mrpInterfaceDisable( id( et1 ) );
      mvrp.lib().mrpInterfaceEnable( id( et1 ) );
   };
   mvrp.advanceTo( 3 );
   ASSERT_EQ( mvrp.lib().indications.size(), 3u );
   mvrp.lib().react = {};
   mvrp.receive( et1, mvrpFrame( vlans( 30, { JoinIn } ) ) );
   EXPECT_EQ( mvrp.states( et1, 30 ), "mrpAnxiousObserver mrpIn" );
   mvrp.advanceTo( 12 );
   EXPECT_EQ( mvrp.said().back(), "Ethernet1: vlan{LeaveAll 30 In}" );
}

} // namespace
} // namespace TestSupport
