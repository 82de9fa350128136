// The life of a frame: what makes it, what sends it, and what becomes of it when it cannot be sent.
#include "mrp/platform/pelk/PktManager.h"

#include "tests/transmit/TransmitTest.h"

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The test for a full frame comes behind each value: 64 bytes of room must be left. Three values
// that follow on each other are a byte, and so the frame is full at the first one of a byte.
TEST( FrameTransmission, sendsTheFrameWhenItIsFull ) {
   struct Row {
      std::optional< U32 > mtu;
      std::size_t vlans;   // 6 bytes and their events
      std::size_t talkers; // 31 bytes and their events
   };
   for ( Row const & row : { Row{ 96, 76, 1 }, Row{ 97, 79, 4 }, Row{ 1499, 4285, 4210 },
                             Row{ 9000, 4288, 4213 }, Row{ std::nullopt, 4288, 4213 } } ) {
      SCOPED_TRACE( row.mtu.value_or( 0 ) );
      auto const valuesInAFrame = [&]( Mrp::MrpApplication application, auto const & valueOf ) {
         Sender sender( application, { et1 }, { .mtu = row.mtu } );
         for ( U16 i = 0; i < 5000 && sender.sent().empty(); ++i ) {
            sender.send( valueOf( i ), New );
         }
         EXPECT_FALSE( sender.isOpen() );
         return decode( sender.sent().at( 0 ).bytes ).declared.size();
      };
      EXPECT_EQ( valuesInAFrame( Mrp::MVRP, []( U16 i ) { return Vlan{ i }; } ), row.vlans );
      EXPECT_EQ( valuesInAFrame( Mrp::MSRP, []( U16 i ) { return talker( i ); } ), row.talkers );
   }
}

// The largest step, onto the most that is not yet full.
TEST( FrameTransmission, hasRoomForTheLargestStep ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .mtu = std::nullopt } );
   for ( U64 i = 0; i < 4212; ++i ) {
      msrp.send( talker( i ), New ); // 31 + 4212 / 3 = 1435
   }
   EXPECT_THAT( msrp.sent(), IsEmpty() );
   msrp.send( FailedTalker{ talker( 1 ) }, New ); // 43
   ASSERT_EQ( msrp.sent().size(), 1u );
   EXPECT_EQ( msrp.sent()[0].bytes.size(), 1497u );
   EXPECT_EQ( decode( msrp.sent()[0].bytes ).declared.size(), 4213u );
   EXPECT_THAT( decode( msrp.sent()[0].bytes ).faults, IsEmpty() );
}

// Who is told of a frame may send more. It goes into a frame of its own, whatever its type.
TEST( FrameTransmission, isOutOfReachOnceItLeaves ) {
   Sender msrp( Mrp::MSRP );
   FrameWatcher watcher( msrp );
   auto const sendMeanwhile = [&]( auto const & value ) {
      watcher.told = [&, value] {
         watcher.told = [] {};
         msrp.send( value, New );
      };
   };
   sendMeanwhile( talker( 8 ) );
   EXPECT_EQ( msrp.send( Domain{ 6, 3 }, New ).text(), "domain{6 New}" );
   EXPECT_EQ( msrp.send( Domain{ 7, 4 }, Lv ).text(), "talker{0x8 New} domain{7 Lv}" );
   // Nor is what it sends lost where a frame makes room for a lower type.
   msrp.send( Domain{ 6, 3 }, New );
   sendMeanwhile( Listener{ 4 } );
   EXPECT_EQ( msrp.send( talker( 20 ), Lv ).text(), "listener{0x4 New Ready} talker{0x14 Lv}" );
}

// An application that answers each frame with more to say has its next frames at the next turn.
TEST( FrameTransmission, endsWhateverIsSaidMeanwhile ) {
   Sender mvrp( Mrp::MVRP );
   FrameWatcher watcher( mvrp );
   unsigned frames = 0;
   watcher.told = [&] {
      ASSERT_LT( ++frames, 100u );
      mvrp.declare( et1, Vlan{ 10 }, New );
   };
   mvrp.declare( et1, Vlan{ 10 }, New );
   for ( unsigned turn = 1; turn <= 3; ++turn ) {
      mvrp.advanceTo( turn * 0.1 );
      EXPECT_EQ( frames, 2 * turn ); // one in each context
   }
}

// The timer looks at the first ones: a second frame alone waits until there is a first one again,
// or for a call that names its interface.
TEST( SecondContext, staysBehindWhenTheFirstHasLeft ) {
   Sender msrp( Mrp::MSRP, { et1, et2 } );
   msrp.send( Domain{ 6, 3 }, New ).send( Domain{ 6, 3 }, New, true );
   msrp.send( Domain{ 6, 3 }, New, true, et2 );
   msrp.mrpdu();
   msrp.clear();
   msrp.advanceTo( 5 );
   EXPECT_THAT( msrp.said(), IsEmpty() );
   msrp.send( Domain{ 7, 4 }, New, true ).send( talker( 8 ), Lv );
   msrp.advanceTo( 5.1 );
   EXPECT_THAT( msrp.said(),
                ElementsAre( "Ethernet1: talker{0x8 Lv}", "Ethernet1: domain{6 New, 7 New}" ) );
   EXPECT_TRUE( msrp.isOpen( true, et2 ) );
   msrp.sm().mrpTransmitTxAttributes( Pelk::IntfId( et2 ) );
   EXPECT_EQ( msrp.said().back(), "Ethernet2: domain{6 New}" );
}

TEST( SecondContext, hasItsOwnOrderAndFullness ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .mtu = 100 } );
   msrp.send( Domain{ 6, 3 }, New ).send( Domain{ 6, 3 }, New, true );
   msrp.send( talker( 8 ), New, true ); // a lower type: the second leaves
   EXPECT_THAT( msrp.said(), ElementsAre( "Ethernet1: domain{6 New}" ) );
   msrp.send( talker( 10 ), New, true ); // full: the second leaves again
   EXPECT_EQ( msrp.said().back(), "Ethernet1: talker{0x8 New; 0xa New}" );
   EXPECT_TRUE( msrp.isOpen() );
   EXPECT_FALSE( msrp.isOpen( true ) );
   EXPECT_EQ( msrp.text(), "domain{6 New}" );
}

TEST( FrameTransmission, keepsAFrameOverTheAbsenceOfItsInterface ) {
   Pelk::IntfId const ethernet1( et1 );
   Sender mvrp( Mrp::MVRP );
   mvrp.send( Vlan{ 10 }, JoinIn );
   mvrp.host().interfaceDel( ethernet1 );
   mvrp.advanceTo( 0.3 );
   mvrp.send( Vlan{ 11 }, JoinIn ); // lost
   EXPECT_TRUE( mvrp.isOpen() );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.host().interfaceIs( ethernet1 );
   mvrp.send( Vlan{ 12 }, JoinIn );
   mvrp.advanceTo( 0.4 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{10 JoinIn; 12 JoinIn}" ) );
   EXPECT_EQ( mvrp.counters().numOfPktsTransmitted(), 1u );
   // It goes with the desire for the interface.
   mvrp.send( Vlan{ 10 }, JoinIn ).send( Vlan{ 20 }, New, true );
   mvrp.host().interfaceDel( ethernet1 );
   mvrp.lib().mrpInterfaceDisable( ethernet1 );
   EXPECT_FALSE( mvrp.isOpen() || mvrp.isOpen( true ) );
}

TEST( FrameTransmission, losesAnAttributeWhenNoPacketIsLeft ) {
   Sender mvrp( Mrp::MVRP );
   Pelk::PktManager & manager = Pelk::globalPktManager();
   U32 const limit = manager.maxPkts();
   EXPECT_EQ( limit, 10000u );
   manager.maxPktsIs( manager.pkts() + 1 );
   mvrp.send( Vlan{ 10 }, JoinIn ).send( Vlan{ 20 }, JoinIn, true );
   EXPECT_FALSE( mvrp.isOpen( true ) );
   EXPECT_EQ( mvrp.text(), "vlan{10 JoinIn}" );
   mvrp.send( Vlan{ 30 }, JoinIn, true ); // the first frame's packet has come back
   EXPECT_TRUE( mvrp.isOpen( true ) );
   manager.maxPktsIs( limit );
}

} // namespace
} // namespace TestSupport
