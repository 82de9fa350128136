// When a registration ends: after a Lv each attribute waits on a timer of its own, after a
// LeaveAll all of a type wait on one.
#include "tests/machines/MachinesTest.h"

#include <sstream>

namespace TestSupport {
namespace {

using namespace Mrp;

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

// 10 and 11 are registered from 0 on; the leave time is 2, and our own LeaveAll far off. What
// arrives: "1 Lv 10", at 1 a Lv for 10; "1 LeaveAll 0".
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

// One LeaveAll is received at 1, and our own goes out at 11. Exactly 0.6 is no time but says: the
// interface's; an interface's 0 is none.
TEST( Leave, takesTheTimeForItsCause ) {
   struct Row {
      double system, interface, afterOurs;
      char const * left;
   };
   for ( Row const & row : { Row{ 3, 2, 0.6, "10 at 3, 10 at 13" },
                             { 3, 2, 0.7, "10 at 3, 10 at 11.7" },
                             { 3, 0, 0.6, "10 at 4, 10 at 14" },
                             { 3, 0, 5, "10 at 4, 10 at 16" } } ) {
      Participant mvrp( MVRP );
      mvrp.config().leaveTimeIs( row.system );
      mvrp.config().intfLeaveTimeIs( id( et1 ), row.interface );
      mvrp.config().txLeaveAllExpiryTimeIs( row.afterOurs );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.advanceTo( 1 );
      mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
      mvrp.advanceTo( 5 );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.advanceTo( 17 );
      EXPECT_EQ( left( mvrp ), row.left );
   }
}

// A machine of one attribute goes with its interface; the shared one fires, and finds nothing.
TEST( Leave, tellsNothingOfAnInterfaceThatWasDisabled ) {
   Participant mvrp( MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv } ) ) );
   mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
   ASSERT_EQ( waitsOn( mvrp, 10 ), "explicit shared" );
   mvrp.lib().mrpInterfaceDisable( id( et1 ) );
   EXPECT_TRUE( mvrp.sm().registrarSm()->explicitLeaveSm().empty() );
   EXPECT_EQ( waitsOn( mvrp, 10 ), "shared" );
   mvrp.advanceTo( 5 );
   EXPECT_TRUE( mvrp.sm().registrarSm()->leaveSm().empty() );
   EXPECT_EQ( left( mvrp ), "" );
   EXPECT_EQ( mvrp.counters().numOfLeaveIndications(), 0u );
}

// A frame that came during standby still waits, so that each arrival brings the one before it: 10
// and 11 have been joined and left, and the frame given here is still to be read.
class LeaveWithAFrameThatWaits : public testing::Test {
 protected:
   void arrive( Vector const & waiting ) {
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
      mvrp.sm().standbyModeIs( false );
      mvrp.sm().handleStandbyMode();
      mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv, Lv } ) ) );
      mvrp.receive( et1, mvrpFrame( waiting ) );
      ASSERT_EQ( mvrp.states( et1, 11 ), "mrpVeryAnxiousObserver mrpLv" );
   }
   Participant mvrp{ MVRP, { et1 }, { .standby = true } };
};

TEST_F( LeaveWithAFrameThatWaits, readsItFirst ) {
   arrive( vlans( 11, { JoinIn } ) );
   mvrp.advanceTo( 3 );
   EXPECT_EQ( left( mvrp ), "10 at 0.6" );
   EXPECT_EQ( mvrp.states( et1, 11 ), "mrpAnxiousObserver mrpIn" );
}

// Over it the application may close the interface and open it anew: that one is alive like any
// other.
TEST_F( LeaveWithAFrameThatWaits, leavesAnInterfaceAliveThatItHasReopened ) {
   arrive( vlans( 20, { JoinIn } ) );
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
   mvrp.clear();
   mvrp.advanceTo( 12 );
   EXPECT_THAT( mvrp.said(), testing::Contains( testing::HasSubstr( "LeaveAll" ) ) );
}

} // namespace
} // namespace TestSupport
