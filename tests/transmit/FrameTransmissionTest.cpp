// The life of a frame: what makes it, what sends it, and what becomes of it when it cannot be sent.
#include "mrp/platform/pelk/PktManager.h"

#include "tests/transmit/TransmitTest.h"

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST( FrameTransmission, putsHeaderAndVersionInFront ) {
   Sender mvrp( Mrp::MVRP );
   mvrp.send( Vlan{ 10 }, JoinIn );
   mvrp.advanceTo( 0.1 );
   ASSERT_EQ( mvrp.sent().size(), 1u );
   EXPECT_EQ( hex( mvrp.sent()[0].bytes ),
              hex( fromHex( "01 80 c2 00 00 21  02 00 00 00 00 01  88 f5  00"
                            "01 02 00 01 00 0a 24 00 00 00 00" ) ) );
   EXPECT_EQ( mvrp.counters().numOfPktsTransmitted(), 1u );
   EXPECT_EQ( mvrp.lib().mrpCurrentTxIntf().stringValue(), et1 );
   EXPECT_FALSE( mvrp.isOpen() );
}

TEST( FrameTransmission, givesTheBridgesAddressForAPortThatHasNone ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .portAddresses = false } );
   msrp.send( Domain{ 6, 3 }, New ).mrpdu();
   EXPECT_EQ( decode( msrp.sent()[0].bytes ).from, 0x0200'0000'00ffu );
}

TEST( FrameTransmission, sendsAFrameThatHoldsNoMessage ) {
   for ( auto const & [application, type] :
         { std::pair( Mrp::MVRP, U8{ 2 } ), { Mrp::MSRP, U8{ 5 } }, { Mrp::MMRP, U8{ 1 } } } ) {
      Sender sender( application );
      sender.lib().mrpSendAttributeIntf( Mrp::MrpParameters( Pelk::IntfId( et1 ), type, JoinIn ),
                                         Pelk::IntfId( et1 ), false );
      EXPECT_EQ( hex( sender.mrpdu() ), "00 00 00" );
   }
}

// The test for a full frame comes behind each value: 64 bytes of room must be left.
TEST( FrameTransmission, sendsTheFrameWhenItIsFull ) {
   struct Row {
      std::optional< U32 > mtu;
      std::size_t vlans;   // 2 bytes and 5 for each
      std::size_t talkers; // 4 bytes and 28 for each
      std::size_t failed;  // 4 bytes and 37 for each
   };
   for ( Row const & row : { Row{ 96, 6, 1, 1 }, Row{ 97, 7, 2, 1 }, Row{ 101, 7, 2, 1 },
                             Row{ 106, 8, 2, 2 }, Row{ std::nullopt, 287, 52, 39 } } ) {
      SCOPED_TRACE( row.mtu.value_or( 0 ) );
      Sender mvrp( Mrp::MVRP, { et1 }, { .mtu = row.mtu } );
      Sender msrp( Mrp::MSRP, { et1 }, { .mtu = row.mtu, .activity = &mvrp.activity() } );
      auto const valuesInAFrame = []( Sender & sender, auto const & valueOf ) {
         sender.clear();
         for ( U16 i = 0; i < 2000 && sender.sent().empty(); i += 2 ) { // no two of them merge
            sender.send( valueOf( i ), New );
         }
         EXPECT_FALSE( sender.isOpen() );
         Decoded const frame = decode( sender.sent().at( 0 ).bytes );
         EXPECT_THAT( frame.faults, IsEmpty() );
         return frame.values().size();
      };
      EXPECT_EQ( valuesInAFrame( mvrp, []( U16 i ) { return Vlan{ i }; } ), row.vlans );
      EXPECT_EQ( valuesInAFrame( msrp, []( U16 i ) { return talker( i ); } ), row.talkers );
      EXPECT_EQ( valuesInAFrame( msrp, []( U16 i ) { return FailedTalker{ talker( i ) }; } ),
                 row.failed );
   }
}

// The largest step, onto the most that is not yet full, a body of 1435 bytes; and one byte more.
TEST( FrameTransmission, isFullAt1436BytesAndHasRoomForTheLargestStep ) {
   Sender msrp( Mrp::MSRP, { et1 }, { .mtu = std::nullopt } );
   auto const fill = [&] {
      for ( U64 i = 0; i < 51; ++i ) {
         msrp.send( talker( 2 * i ), New ); // 4 + 51 * 28 = 1432
      }
      for ( U64 i = 1; i <= 9; ++i ) {
         msrp.send( talker( 100 + i ), New ); // three bytes of events
      }
   };
   fill();
   EXPECT_THAT( msrp.sent(), IsEmpty() );
   msrp.send( FailedTalker{ talker( 500 ) }, New ); // 43
   ASSERT_EQ( msrp.sent().size(), 1u );
   EXPECT_EQ( msrp.sent()[0].bytes.size(), 1497u );
   EXPECT_EQ( decode( msrp.sent()[0].bytes ).values().size(), 61u );
   EXPECT_THAT( decode( msrp.sent()[0].bytes ).faults, IsEmpty() );

   fill();
   msrp.send( talker( 110 ), New ).send( talker( 111 ), New );
   EXPECT_EQ( msrp.sent().size(), 1u );
   msrp.send( talker( 112 ), New ); // the byte
   EXPECT_EQ( msrp.sent().size(), 2u );
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

TEST( FrameTransmission, throwsFramesAwayWhileFlooding ) {
   Sender mvrp( Mrp::MVRP );
   mvrp.config().mrpFloodingIs( true );
   mvrp.declare( et1, Vlan{ 10 }, JoinIn );
   EXPECT_TRUE( mvrp.isOpen() && mvrp.isOpen( true ) );
   mvrp.advanceTo( 0.1 );
   EXPECT_FALSE( mvrp.isOpen() || mvrp.isOpen( true ) );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   EXPECT_EQ( mvrp.counters().numOfPktsTransmitted(), 0u );
   EXPECT_EQ( mvrp.states( et1, 10 ), "mrpQuietActive mrpMt" ); // it moved on as if sent
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
