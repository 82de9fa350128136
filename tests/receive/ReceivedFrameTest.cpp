// A frame as a whole: whether it is taken in, in which order its parts take effect, and what a
// LeaveAll makes of what the same frame declares.
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

TEST( ReceivedFrame, isTakenInByAddressAndType ) {
   struct Row {
      char const * what;
      std::string counts; // no counter: it is taken in
      Frame frame;
   };
   TraceCapture const traces( 1u << 6 );
   std::string const badType = "numOfIncorrectEtype";
   std::string const badAddress = "numOfIncorrectDmac";
   for ( Row const & row :
         { Row{ "its own", "", joinVlan10() },
           Row{ "tagged, with priority", "", joinVlan10().tag( 0xe064 ) },
           Row{ "two tags", badType, joinVlan10().tag( 100 ).tag( 200 ) },
           Row{ "MSRP's type behind a tag", badType, joinVlan10().type( 0x22ea ).tag( 1 ) },
           Row{ "another kind of tag", badType, joinVlan10().type( 0x88a8 ) },
           Row{ "last byte of the address", badAddress, joinVlan10().to( 0x0180'c200'0020 ) },
           Row{ "first byte of the address", badAddress, joinVlan10().to( 0x0380'c200'0021 ) },
           // The address is looked at first, and then no more.
           Row{ "both wrong", badAddress, joinVlan10().to( 1 ).type( 2 ) } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( Mrp::MVRP );
      mvrp.receive( et1, row.frame );
      EXPECT_EQ( mvrp.moved(), row.counts.empty() ? "numOfPktsProcessed=1 numOfJoinIndications=1"
                                                  : row.counts + "=1 numOfPktsProcessed=1" );
      EXPECT_EQ( mvrp.attribute( et1, 10 ).has_value(), row.counts.empty() );
   }
   EXPECT_EQ( traces.lines().at( 0 ), "Received 802.1Q-tagged frame with VLAN ID 100" );
}

TEST( ReceivedFrame, takesDomainsFirstTheRestInOrderAndLeaveAllByAscendingType ) {
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
   msrp.clear();
   msrp.receive( et1, msrpFrame( msrpLeaveAll( domainType ), msrpLeaveAll( listenerType ) ) );
   EXPECT_THAT( msrp.said(),
                ElementsAre( "Ethernet1: listener{0x500 Mt Ready} domain{5 Mt, 6 Mt}" ) );
}

// The answers to all LeaveAll leave in a frame of their own, before any attribute is touched: the
// Lv of a VLAN unknown here makes the second one. At the end all interfaces send what they have.
TEST( ReceivedFrame, hasItsLeaveAllAnsweredFirst ) {
   Participant mvrp( Mrp::MVRP, { et1, et2 } );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.declare( et2, Vlan{ 7 }, JoinIn );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.receive(
      et1, mvrpFrame( message( vlans( 5, { Lv } ), vlans( 10, { JoinIn } ) ), vlanLeaveAll() ) );
   EXPECT_THAT( mvrp.said(), testing::UnorderedElementsAre(
                                "Ethernet1: vlan{10 In, 11 Mt}", "Ethernet1: vlan{5 Mt}",
                                "Ethernet2: vlan{7 JoinMt}", "Ethernet2: vlan{7 JoinMt}" ) );
}

// Our answer reports the attribute as the event beside the LeaveAll declares it, and a registration
// that is not declared ends with the leave time.
TEST( ReceivedFrame, tellsTheAnswerToItsLeaveAllWhatItDeclares ) {
   for ( Event const event : { New, JoinIn, JoinMt, In, Mt, Lv } ) {
      SCOPED_TRACE( name( event ) );
      bool const declared = event == New || event == JoinIn || event == JoinMt;
      Participant mvrp( Mrp::MVRP );
      mvrp.declare( et1, Vlan{ 10 }, JoinIn );
      mvrp.advanceTo( 0.5 );
      mvrp.receive( et1, joinVlan10() );
      mvrp.clear();
      mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ).leaveAll() ) );
      std::string const answer = declared ? "vlan{10 JoinIn}" : "vlan{10 JoinMt}";
      ASSERT_GE( mvrp.sent().size(), 2u ); // on both contexts; Mt and Lv then call for more
      EXPECT_EQ( says( mvrp.sent()[0].bytes ), answer );
      EXPECT_EQ( says( mvrp.sent()[1].bytes ), answer );
      mvrp.advanceBy( 2 );
      EXPECT_EQ( mvrp.states( et1, 10 ),
                 declared ? "mrpQuietActive mrpIn" : "mrpQuietActive mrpMt" );
   }
}

TEST( ReceivedFrame, letsTheLastEventAndValueOfAnAttributeWinAndRunsItTwice ) {
   Participant msrp( Mrp::MSRP );
   Talker const first = talker( 0x100 );
   Talker last = first;
   last.accumulatedLatency = 7;
   msrp.receive( et1,
                 msrpFrame( message( talkers( first, { Lv } ), talkers( last, { JoinIn } ) ) ) );
   // Twice JoinIn: the first makes it known, the second confirms it and counts.
   EXPECT_EQ( msrp.moved(), "numOfPktsProcessed=1 numOfJoinIndications=2" );
   ASSERT_EQ( msrp.lib().indications.size(), 1u );
   EXPECT_EQ( hex( msrp.lib().indications[0].value ), hex( wire( last ) ) );
   EXPECT_EQ( msrp.states( et1, talkerType, 0x100 ), "mrpQuietObserver mrpIn" );
}

// A domain is told of each time, as the peer has it, but answered with what this participant holds
// for the class, and that is never rewritten.
TEST( ReceivedFrame, hasItsDomainsAnsweredWithTheStoredOnes ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, JoinIn );
   msrp.advanceTo( 0.2 );
   msrp.clear();
   for ( Event const event : { JoinMt, JoinIn, Lv, JoinIn } ) { // the last is not counted
      msrp.receive( et1, msrpFrame( domains( { 6, 1, 99 }, { event } ) ) );
   }
   Decoded const answer = decode( msrp.sent().at( 0 ).bytes );
   EXPECT_EQ( answer.text(), "domain{6 JoinMt}" );
   EXPECT_EQ( hex( answer.declared.at( 0 ).value ), "06 03 00 02" );
   ASSERT_EQ( msrp.lib().indications.size(), 3u );
   for ( Indication const & indication : msrp.lib().indications ) {
      EXPECT_EQ( hex( indication.value ), "06 01 00 63" );
   }
   EXPECT_EQ( msrp.counters().numOfJoinIndications(), 2u );
   EXPECT_EQ( hex( msrp.attribute( et1, domainType, 6 )->value ), "06 03 00 02" );
}

// The interface, its Pam and its machine go while its frame is being worked off.
TEST( ReceivedFrame, outlivesAnApplicationThatDisablesTheInterface ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.lib().react = [&]( Indication const & ) {
      mvrp.lib().mrpInterfaceDisable( Pelk::IntfId( et1 ) );
   };
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn, JoinIn } ).leaveAll() ) );
   EXPECT_EQ( mvrp.indications().size(), 3u );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   mvrp.advanceTo( 20 );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
}

TEST( RecycledPkt, makesExactlyTheNextMrpduSayNothing ) {
   Participant mvrp( Mrp::MVRP );
   Bytes const frame = mvrpFrame( vlans( 10, { JoinIn } ).leaveAll() );
   mvrp.sm().recycledPktIs( true );
   mvrp.receive( et1, joinVlan10().type( 2 ) ); // does not get that far
   mvrp.advanceTo( 5 );
   mvrp.receive( et1, frame );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   EXPECT_EQ( mvrp.sm().parseContext()->eventsCounter(), 1u );
   mvrp.advanceTo( 10 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{LeaveAll}" ) ); // not put off to 15
   mvrp.receive( et1, frame );
   EXPECT_EQ( mvrp.indications().size(), 1u );
}

} // namespace
} // namespace TestSupport
