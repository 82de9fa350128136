// A frame as a whole: in which order its parts take effect, and what a LeaveAll makes of what the
// same frame declares.
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";

TEST( Dispatch, takesDomainsFirstAndTheRestInFrameOrder ) {
   Participant msrp( Mrp::MSRP );
   msrp.receive( et1, msrpFrame( listeners( 0x500, { { JoinIn, Ready } } ),
                                 message( talkers( 0x200, { JoinIn } ), talkers( 0x100, { New } ) ),
                                 domains( { 6, 3, 2 }, { New } ),
                                 failedTalkers( { talker( 0x50 ) }, { JoinMt } ),
                                 domains( { 5, 2, 2 }, { JoinIn } ) ) );
   EXPECT_THAT( msrp.indications(),
                ElementsAre( "join domain 6 New on Ethernet1", "join domain 5 JoinIn on Ethernet1",
                             "join listener 0x500 JoinIn on Ethernet1",
                             "join talker 0x200 JoinIn on Ethernet1",
                             "join talker 0x100 New on Ethernet1",
                             "join failed 0x50 JoinMt on Ethernet1" ) );
}

// The answers to all LeaveAll leave in a frame of their own, before any attribute is touched: the
// Lv of a VLAN unknown here makes the second frame.
TEST( Dispatch, answersALeaveAllBeforeTheAttributes ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.clear();
   mvrp.receive(
      et1, mvrpFrame( message( vlans( 5, { Lv } ), vlans( 10, { JoinIn } ) ), vlanLeaveAll() ) );
   EXPECT_THAT( mvrp.said(),
                ElementsAre( "Ethernet1: vlan{10 In, 11 Mt}", "Ethernet1: vlan{5 Mt}" ) );
}

TEST( Dispatch, takesLeaveAllByAscendingType ) {
   Participant msrp( Mrp::MSRP );
   msrp.receive( et1, msrpFrame( domains( { 6, 3, 2 }, { JoinIn } ),
                                 listeners( 0x500, { { JoinIn, Ready } } ),
                                 talkers( 0x100, { JoinIn } ) ) );
   msrp.clear();
   msrp.receive( et1, msrpFrame( msrpLeaveAll( domainType ), msrpLeaveAll( listenerType ),
                                 msrpLeaveAll( talkerType ) ) );
   EXPECT_THAT(
      msrp.said(),
      ElementsAre( "Ethernet1: talker{0x100 Mt} listener{0x500 Mt Ready} domain{6 Mt}" ) );
}

// Our answer reports the attribute as the event beside the LeaveAll declares it, and a registration
// that is not declared ends with the leave time.
TEST( Dispatch, reportsAnAttributeAsTheFrameWithTheLeaveAllDeclaresIt ) {
   for ( Event const event : { New, JoinIn, JoinMt, In, Mt, Lv } ) {
      SCOPED_TRACE( name( event ) );
      bool const declared = event == New || event == JoinIn || event == JoinMt;
      Participant mvrp( Mrp::MVRP );
      mvrp.declare( et1, Vlan{ 10 }, JoinIn );
      mvrp.advanceTo( 0.5 );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.clear();
      mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ).leaveAll() ) );
      std::string const answer =
         std::string( "Ethernet1: vlan{10 " ) + ( declared ? "JoinIn}" : "JoinMt}" );
      ASSERT_GE( mvrp.said().size(), 2u ); // on both contexts; Mt and Lv then call for more
      EXPECT_EQ( mvrp.said()[0], answer );
      EXPECT_EQ( mvrp.said()[1], answer );
      mvrp.advanceBy( 2 );
      EXPECT_EQ( mvrp.states( et1, 10 ),
                 declared ? "mrpQuietActive mrpIn" : "mrpQuietActive mrpMt" );
      EXPECT_EQ( mvrp.counters().numOfLeaveIndications(), declared ? 0u : 1u );
   }
}

// The join that follows its own LeaveAll is no news, and no count.
TEST( Dispatch, indicatesNothingForARefreshBehindALeaveAll ) {
   Participant msrp( Mrp::MSRP );
   Bytes const frame = msrpFrame( talkers( 0x100, { JoinIn, JoinIn, JoinIn } ).leaveAll(),
                                  listeners( 0x100, { { JoinIn, Ready } } ).leaveAll() );
   msrp.receive( et1, frame );
   EXPECT_EQ( msrp.moved(), "numOfPktsProcessed=1 numOfJoinIndications=4" );
   for ( double t = 0.3; t < 5; t += 0.3 ) {
      msrp.advanceTo( t );
      msrp.receive( et1, frame );
   }
   EXPECT_EQ( msrp.moved(), "numOfPktsProcessed=16" );
   EXPECT_EQ( msrp.lib().indications.size(), 4u );
}

TEST( Dispatch, letsTheLastEventAndValueOfAnAttributeWinAndRunsItTwice ) {
   Participant msrp( Mrp::MSRP );
   Talker first = talker( 0x100 );
   Talker last = first;
   last.accumulatedLatency = 7;
   msrp.receive( et1,
                 msrpFrame( message( talkers( first, { Lv } ), talkers( last, { JoinIn } ) ) ) );
   // Twice JoinIn: the first makes it known, the second confirms it and counts.
   EXPECT_EQ( msrp.moved(), "numOfPktsProcessed=1 numOfJoinIndications=2" );
   ASSERT_EQ( msrp.lib().indications.size(), 1u );
   EXPECT_EQ( hex( msrp.lib().indications[0].value ), hex( wire( last ) ) );
   EXPECT_EQ( msrp.states( et1, talkerType, 0x100 ), "mrpQuietObserver mrpIn" );

   Participant mvrp( Mrp::MVRP );
   mvrp.receive( et1, mvrpFrame( message( vlans( 10, { JoinIn } ), vlans( 10, { Lv } ) ) ) );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{10 Mt; 10 Mt}" ) );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
}

// A domain is answered with what this participant holds for the class, and never rewritten.
TEST( Dispatch, answersADomainWithTheStoredOne ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, JoinIn );
   msrp.advanceTo( 0.2 );
   msrp.clear();
   msrp.receive( et1, msrpFrame( domains( { 6, 1, 99 }, { JoinMt } ) ) );
   ASSERT_EQ( msrp.sent().size(), 1u );
   Decoded const answer = decode( msrp.sent()[0].bytes );
   EXPECT_EQ( answer.text(), "domain{6 JoinMt}" );
   EXPECT_EQ( hex( answer.values().at( 0 ).value ), "06 03 00 02" );
   ASSERT_EQ( msrp.lib().indications.size(), 1u );
   EXPECT_EQ( hex( msrp.lib().indications[0].value ), "06 01 00 63" ); // what the peer said
   EXPECT_EQ( hex( msrp.attribute( et1, domainType, 6 )->value ), "06 03 00 02" );
}

// Marked for deletion means not there: a LeaveAll is not answered for it, and drops it from the
// index.
TEST( Dispatch, leavesAttributesMarkedForDeletionAlone ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.advanceTo( 1 );
   mvrp.clear();
   mvrp.lib().mrpCleanUpIntfDatabaseAttribute( Pelk::IntfId( et1 ), vlanType, 10 );
   mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{11 Mt}" ) );
   auto const * const index = mvrp.sm().mrpAttrIter( { Pelk::IntfId( et1 ), vlanType } );
   EXPECT_EQ( index->attributeKey().size(), 1u );
}

// The interface, its Pam and its machine go while its frame is being worked off.
TEST( Dispatch, outlivesAnApplicationThatDisablesTheInterface ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.lib().react = [&]( Indication const & indication ) {
      if ( indication.key == 11 ) {
         mvrp.lib().mrpInterfaceDisable( Pelk::IntfId( et1 ) );
      }
   };
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn, JoinIn } ).leaveAll() ) );
   EXPECT_EQ( mvrp.indications().size(), 3u );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   mvrp.advanceTo( 20 );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   EXPECT_FALSE( mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) ) );
}

} // namespace
} // namespace TestSupport
