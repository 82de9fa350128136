// An application may send and close the interface in whatever it is told, also where it only
// watches: it is done at once, and nothing of the interface is left.
#include "tests/support/Occasions.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::Contains;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";
Pelk::IntfId const ethernet1( et1 );

class OccasionsTest : public testing::Test {
 protected:
   // For as long as the result lives, it reacts to the first of these.
   [[nodiscard]] static Occasions when( Participant & participant, Occasion awaited,
                                        std::function< void() > react ) {
      return { participant,
               { et1 },
               [awaited, react = std::move( react ),
                done = std::make_shared< bool >()]( Occasion occasion, auto const &, U8, U64 ) {
                  if ( occasion == awaited && !std::exchange( *done, true ) ) {
                     react();
                  }
               } };
   }
   static void expectClosed( Participant & participant ) {
      EXPECT_THAT( participant.lib().mrpTxPacketContext(), IsEmpty() );
      EXPECT_THAT( participant.lib().mrpTxSecondPacketContext(), IsEmpty() );
      EXPECT_THAT( participant.sm().leaveAllSm()->intfLeaveAllSm(), IsEmpty() );
      EXPECT_THAT(
         participant.status().application( participant.lib().application() )->leaveAllTime(),
         IsEmpty() );
   }
   static void close( Participant & participant ) {
      participant.lib().mrpInterfaceDisable( ethernet1 );
   }
};

TEST_F( OccasionsTest, sendsIntoTheFrameThatOpens ) {
   Participant mvrp( Mrp::MVRP );
   auto const watching =
      when( mvrp, Occasion::openFrame, [&] { mvrp.lib().mrpSendLeaveAll( vlanType, ethernet1 ); } );
   mvrp.declare( et1, Vlan{ 10 }, New );
   mvrp.sm().mrpTransmitTxAttributes( ethernet1 );
   EXPECT_THAT( mvrp.said(), Contains( "Ethernet1: vlan{LeaveAll; 10 New}" ) );
}

TEST_F( OccasionsTest, closesOverAFrameThatOpens ) {
   Participant mvrp( Mrp::MVRP );
   auto const watching = when( mvrp, Occasion::openFrame, [&] { close( mvrp ); } );
   mvrp.declare( et1, Vlan{ 10 }, New );
   expectClosed( mvrp );
}

// The domain's frame leaves because a talker is of a lower type.
TEST_F( OccasionsTest, closesOverTheFrameThatAWithdrawalSends ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, talker( 7 ), New );
   msrp.advanceTo( 0.3 );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   auto const watching = when( msrp, Occasion::frameLeaves, [&] { close( msrp ); } );
   msrp.declare( et1, talker( 7 ), Lv );
   expectClosed( msrp );
   EXPECT_EQ( msrp.states( et1, talkerType, 7 ), "none" );
}

TEST_F( OccasionsTest, closesOverTheLeaveAllThatBegins ) {
   for ( bool const standby : { false, true } ) {
      Participant msrp( Mrp::MSRP, { et1 }, { .enabled = standby, .standby = standby } );
      auto const watching = when( msrp, Occasion::leaveAllTime, [&] { close( msrp ); } );
      if ( standby ) {
         msrp.endStandby();
      } else {
         msrp.lib().mrpInterfaceEnable( ethernet1 );
      }
      expectClosed( msrp );
      EXPECT_FALSE( msrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
      msrp.lib().mrpInterfaceEnable( ethernet1 );
      EXPECT_EQ( msrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 )->leaveAllPending().size(),
                 4u );
   }
}

TEST_F( OccasionsTest, opensAnewOverTheLeaveAllThatEnds ) {
   Participant msrp( Mrp::MSRP );
   auto const watching =
      when( msrp, Occasion::leaveAllTime, [&] { msrp.lib().mrpInterfaceEnable( ethernet1 ); } );
   close( msrp );
   EXPECT_TRUE( msrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
   EXPECT_EQ( msrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 )->leaveAllPending().size(), 4u );
}

// The domain's frame leaves because the LeaveAll is of a lower type.
TEST_F( OccasionsTest, closesOverTheFrameThatALeaveAllSends ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   auto const watching = when( msrp, Occasion::frameLeaves, [&] { close( msrp ); } );
   auto & leaveAll = *msrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 );
   leaveAll.leaveAllPending( talkerType )->timestampIs( 0 );
   leaveAll.handleLeaveAllTimer();
   expectClosed( msrp );
}

// What is being sent is not changed by it.
TEST_F( OccasionsTest, sendsAnotherOverTheFrameThatADeclarationSends ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   auto const watching =
      when( msrp, Occasion::frameLeaves, [&] { msrp.declare( et1, talker( 8 ), New ); } );
   msrp.declare( et1, talker( 7 ), New );
   msrp.advanceTo( 0.3 );
   EXPECT_THAT( msrp.said(), Contains( "Ethernet1: talker{0x8 New; 0x7 New}" ) );
}

TEST_F( OccasionsTest, sendsAnotherTypeOverTheFrameThatALeaveAllSends ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, talker( 7 ), New );
   msrp.advanceTo( 1 );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   auto const watching = when( msrp, Occasion::frameLeaves, [&] {
      msrp.declare( et1, Domain{ 5, 2, 2 }, New );
   } );
   auto & leaveAll = *msrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 );
   leaveAll.leaveAllPending( talkerType )->timestampIs( 0 );
   leaveAll.handleLeaveAllTimer();
   EXPECT_THAT( msrp.said(), Contains( "Ethernet1: domain{5 New} talker{LeaveAll 0x7 JoinMt}" ) );
}

TEST_F( OccasionsTest, declaresWhatIsBeingCommitted ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   auto const watching =
      when( mvrp, Occasion::state, [&] { mvrp.declare( et1, Vlan{ 10 }, JoinIn ); } );
   mvrp.advanceTo( 5 );
   EXPECT_EQ( mvrp.states( et1, 10 ), "mrpQuietActive mrpIn" );
}

TEST_F( OccasionsTest, declaresAnewWhatIsDeleted ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.declare( et1, Vlan{ 10 }, New );
   mvrp.advanceTo( 1 );
   auto const watching =
      when( mvrp, Occasion::attribute, [&] { mvrp.declare( et1, Vlan{ 10 }, JoinIn ); } );
   mvrp.lib().mrpCleanUpIntfDatabaseAttribute( ethernet1, vlanType, 10 );
   mvrp.advanceTo( 5 );
   mvrp.clear();
   mvrp.receive( et1, mvrpFrame( vlans( 0, {} ).leaveAll() ) );
   EXPECT_THAT( mvrp.said(), Contains( "Ethernet1: vlan{10 JoinMt}" ) );
}

} // namespace
} // namespace TestSupport
