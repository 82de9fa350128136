// When a registration ends: after a Lv each attribute waits on a timer of its own, after a
// LeaveAll all of a type wait on one.
#include "tests/machines/MachinesTest.h"

namespace TestSupport {
namespace {

using namespace Mrp;

struct Left {
   U64 vlan;
   double time;
};

void expectLeft( Participant & mvrp, std::vector< Left > const & expected ) {
   std::vector< Indication > leaves;
   for ( Indication const & indication : mvrp.lib().indications ) {
      if ( !indication.join ) {
         leaves.push_back( indication );
      }
   }
   ASSERT_EQ( leaves.size(), expected.size() );
   for ( std::size_t i = 0; i < leaves.size(); ++i ) {
      EXPECT_EQ( leaves[i].key, expected[i].vlan );
      EXPECT_NEAR( leaves[i].time, expected[i].time, 0.11 ); // the wheel's tick
   }
}

// 10 and 11 are registered from 0 on; the leave time is 2, and our own LeaveAll far off.
TEST( Leave, endsARegistrationOneLeaveTimeAfterItsCause ) {
   struct Arrival {
      double time;
      Bytes frame;
   };
   struct Row {
      char const * what;
      std::vector< Arrival > arrivals;
      std::vector< Left > left;
   };
   Bytes const leaveAll = mvrpFrame( vlanLeaveAll() );
   auto const frame = []( U16 vlan, Event event ) -> Bytes {
      return mvrpFrame( vlans( vlan, { event } ) );
   };
   for ( Row const & row :
         { Row{ "a Lv", { { 1, frame( 10, Lv ) } }, { { 10, 3 } } },
           { "a second Lv changes nothing",
             { { 1, frame( 10, Lv ) }, { 2, frame( 10, Lv ) } },
             { { 10, 3 } } },
           { "each Lv has a timer of its own",
             { { 1, frame( 11, Lv ) }, { 2, frame( 10, Lv ) } },
             { { 11, 3 }, { 10, 4 } } },
           { "a LeaveAll", { { 1, leaveAll } }, { { 10, 3 }, { 11, 3 } } },
           { "a second LeaveAll changes nothing",
             { { 1, leaveAll }, { 2, leaveAll } },
             { { 10, 3 }, { 11, 3 } } },
           { "one that joins the wait postpones all",
             { { 1, leaveAll }, { 1.5, frame( 12, JoinIn ) }, { 2, leaveAll } },
             { { 10, 4 }, { 11, 4 }, { 12, 4 } } },
           { "on both timers the earlier counts, and it is told once",
             { { 1, frame( 10, Lv ) }, { 2, leaveAll } },
             { { 10, 3 }, { 11, 4 } } },
           { "on both timers, the LeaveAll first",
             { { 1, leaveAll }, { 2, frame( 10, Lv ) } },
             { { 10, 3 }, { 11, 3 } } },
           { "a join ends the wait on both",
             { { 1, frame( 10, Lv ) }, { 1.2, leaveAll }, { 1.5, frame( 10, JoinIn ) } },
             { { 11, 3.2 } } },
           { "a join, and a Lv anew",
             { { 1, frame( 10, Lv ) }, { 1.5, frame( 10, JoinMt ) }, { 2, frame( 10, Lv ) } },
             { { 10, 4 } } } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( MVRP );
      mvrp.config().leaveTimeIs( 2 );
      mvrp.config().leaveAllTimeIs( 100 );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
      for ( Arrival const & arrival : row.arrivals ) {
         mvrp.advanceTo( arrival.time );
         mvrp.receive( et1, arrival.frame );
      }
      mvrp.advanceTo( 9 );
      expectLeft( mvrp, row.left );
      // Once fired, the machines are gone.
      EXPECT_EQ( mvrp.sm().registrarSm()->explicitLeaveSm().size(), 0u );
      EXPECT_EQ( mvrp.sm().registrarSm()->leaveSm().size(), 0u );
   }
}

// Our own LeaveAll goes out at 10. Exactly 0.6 is no time but says: the interface's.
TEST( Leave, takesTheTimeForItsCause ) {
   struct Row {
      double system, interface, afterOurs;
      double ours, received;
   };
   for ( Row const & row : { Row{ 3, 2, 0.6, 2, 2 },
                             { 3, 2, 0.7, 0.7, 2 },
                             { 3, 0, 0.6, 3, 3 }, // an interface's 0 is none
                             { 3, 0, 5, 5, 3 } } ) {
      for ( bool const isOurs : { true, false } ) {
         SCOPED_TRACE( std::to_string( row.afterOurs ) + ( isOurs ? " ours" : " received" ) );
         Participant mvrp( MVRP );
         mvrp.config().leaveTimeIs( row.system );
         mvrp.config().intfLeaveTimeIs( id( et1 ), row.interface );
         mvrp.config().txLeaveAllExpiryTimeIs( row.afterOurs );
         mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
         if ( isOurs ) {
            mvrp.advanceTo( 16 );
            expectLeft( mvrp, { { 10, 10 + row.ours } } );
         } else {
            mvrp.advanceTo( 1 );
            mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
            mvrp.advanceTo( 8 );
            expectLeft( mvrp, { { 10, 1 + row.received } } );
         }
      }
   }
}

// A machine of one attribute goes with its interface; the shared one fires, and finds nothing.
TEST( Leave, tellsNothingOfAnInterfaceThatWasDisabled ) {
   for ( bool const shared : { false, true } ) {
      SCOPED_TRACE( shared );
      Participant mvrp( MVRP );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.advanceTo( 1 );
      mvrp.receive( et1, shared ? mvrpFrame( vlanLeaveAll() ) : mvrpFrame( vlans( 10, { Lv } ) ) );
      ASSERT_EQ( waitsOn( mvrp, 10 ), shared ? "shared" : "explicit" );
      mvrp.lib().mrpInterfaceDisable( id( et1 ) );
      auto const & registrar = *mvrp.sm().registrarSm();
      EXPECT_EQ( registrar.explicitLeaveSm().size(), 0u );
      EXPECT_EQ( registrar.leaveSm().size(), shared ? 1u : 0u );
      mvrp.advanceTo( 5 );
      EXPECT_EQ( registrar.leaveSm().size(), 0u );
      expectLeft( mvrp, {} );
      EXPECT_EQ( mvrp.counters().numOfLeaveIndications(), 0u );
   }
}

// A frame that came during standby still waits, so that each arrival brings the one before it.
TEST( Leave, readsAFrameThatWaitsBeforeItLetsGo ) {
   for ( Event const waiting : { JoinIn, In } ) {
      SCOPED_TRACE( name( waiting ) );
      Participant::Options options;
      options.standby = true;
      Participant mvrp( MVRP, { et1 }, options );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.sm().standbyModeIs( false );
      mvrp.sm().handleStandbyMode();
      mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv } ) ) );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { waiting } ) ) );
      ASSERT_EQ( mvrp.attribute( et1, 10 )->registrar, mrpLv );
      EXPECT_EQ( mvrp.counters().numOfPktsProcessed(), 2u );
      mvrp.advanceTo( 3 );
      EXPECT_EQ( mvrp.counters().numOfPktsProcessed(), 3u );
      EXPECT_EQ( mvrp.counters().numOfLeaveIndications(), waiting == JoinIn ? 0u : 1u );
      auto const after = mvrp.attribute( et1, 10 );
      EXPECT_EQ( after && after->registrar == mrpIn, waiting == JoinIn );
   }
}

// Over a frame that waited the application may close the interface and open it anew: that one is
// alive like any other.
TEST( Leave, leavesAnInterfaceAliveThatTheWaitingFrameHasReopened ) {
   Participant::Options options;
   options.standby = true;
   Participant mvrp( MVRP, { et1 }, options );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   mvrp.sm().standbyModeIs( false );
   mvrp.sm().handleStandbyMode();
   mvrp.receive( et1, mvrpFrame( vlans( 10, { Lv } ) ) );
   mvrp.receive( et1, mvrpFrame( vlans( 20, { JoinIn } ) ) );
   mvrp.lib().react = [&]( Indication const & indication ) {
      ASSERT_EQ( indication.key, 20u );
      mvrp.lib().mrpInterfaceDisable( id( et1 ) );
      mvrp.lib().mrpInterfaceEnable( id( et1 ) );
   };
   mvrp.advanceTo( 3 );
   ASSERT_EQ( mvrp.lib().indications.size(), 2u );
   EXPECT_NEAR( mvrp.lib().indications[1].time, 0.6, 0.11 );
   EXPECT_TRUE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( id( et1 ) ) );
   mvrp.lib().react = {};
   mvrp.clear();
   mvrp.receive( et1, mvrpFrame( vlans( 30, { JoinIn } ) ) );
   EXPECT_EQ( mvrp.states( et1, 30 ), "mrpAnxiousObserver mrpIn" );
   mvrp.advanceTo( 12 );
   EXPECT_THAT( mvrp.said(), testing::Contains( testing::HasSubstr( "LeaveAll" ) ) );
}

} // namespace
} // namespace TestSupport
