// What the values of a frame become on the wire: which join an open vector, where vectors and
// messages begin, and where the LeaveAll mark goes.
#include "tests/transmit/TransmitTest.h"

namespace TestSupport {
namespace {

TEST( VectorEncoding, writesTheBytesOfEachKind ) {
   Sender msrp( Mrp::MSRP );
   Talker const t{ 0x0102'0304'0506'0708, 0x91e0'f000'fe01, 0x0203, 0x0405, 0x0607, 0x70, 0x0809 };
   msrp.send( t, JoinIn );
   msrp.send( FailedTalker{ t, 0x1112'1314'1516'1718, 0x19 }, JoinMt );
   msrp.send( Listener{ 0x2122'2324'2526'2728, ReadyFailed }, New );
   msrp.send( Listener{ 0x2122'2324'2526'2729, AskingFailed }, Lv );
   msrp.send( Domain{ 6, 3, 0x0203 }, JoinIn );
   EXPECT_EQ(
      hex( msrp.mrpdu() ),
      hex( fromHex(
         "00"
         "01 19 00 1e  00 01 01 02 03 04 05 06 07 08  91 e0 f0 00 fe 01  02 03  04 05 06 07  70"
         "             00 00 08 09  24  00 00"
         "02 22 00 27  00 01 01 02 03 04 05 06 07 08  91 e0 f0 00 fe 01  02 03  04 05 06 07  70"
         "             00 00 08 09  11 12 13 14 15 16 17 18 19  6c  00 00"
         "03 08 00 0e  00 02 21 22 23 24 25 26 27 28  1e  d0  00 00"
         "04 04 00 09  00 01 06 03 02 03  24  00 00"
         "00 00" ) ) );

   Sender mvrp( Mrp::MVRP );
   mvrp.send( Vlan{ 0x0102 }, JoinIn ).send( Vlan{ 0x0103 }, Mt ).send( Vlan{ 7 }, Lv );
   EXPECT_EQ( hex( mvrp.mrpdu() ),
              hex( fromHex( "00  01 02  00 02 01 02 3c  00 01 00 07 b4  00 00  00 00" ) ) );
}

// Value by value one vector grows, with each event and each declaration at each place of a byte.
// The LeaveAll mark stays on it, and places that no value has reached are zero.
template < class ValueOf >
void expectGrowth( Mrp::MrpApplication application, ValueOf const & valueOf ) {
   for ( unsigned n = 1; n <= 40; ++n ) {
      SCOPED_TRACE( n );
      Sender sender( application );
      std::vector< Event > events;
      std::vector< Declaration > declarations;
      sender.mark();
      for ( unsigned i = 0; i < n; ++i ) {
         auto const value = valueOf( i );
         events.push_back( static_cast< Event >( ( i + i / 6 ) % 6 ) );
         sender.send( value, events.back() );
         if constexpr ( std::is_same_v< decltype( value ), Listener const > ) {
            declarations.push_back( value.declaration );
         }
      }
      auto const first = valueOf( 0 );
      Bytes const expected =
         Frame( sender.protocol(),
                { Vector( first.type, wire( first ), events, declarations ).leaveAll() } );
      EXPECT_EQ( hex( sender.mrpdu() ), hex( { expected.begin() + 14, expected.end() } ) );
   }
}

TEST( VectorEncoding, growsAVectorByteByByte ) {
   expectGrowth( Mrp::MVRP, []( unsigned i ) { return Vlan{ static_cast< U16 >( 250 + i ) }; } );
   expectGrowth( Mrp::MSRP, []( unsigned i ) { return talker( 250 + i ); } );
   expectGrowth( Mrp::MSRP, []( unsigned i ) { return FailedTalker{ talker( 250 + i ) }; } );
   expectGrowth( Mrp::MSRP, []( unsigned i ) {
      return Listener{ 250 + i, static_cast< Declaration >( ( i + i / 4 ) % 4 ) };
   } );
   expectGrowth( Mrp::MSRP, []( unsigned i ) {
      return Domain{ static_cast< U8 >( 100 + i ), static_cast< U8 >( 200 + i ) };
   } );
}

template < class Value >
std::string encoded( std::vector< Value > const & values ) {
   Sender sender( std::is_same_v< Value, Vlan > ? Mrp::MVRP : Mrp::MSRP );
   for ( Value const & value : values ) {
      sender.send( value, JoinIn );
   }
   return sender.text();
}

// A value joins the vector of the one before it, one step below it. What else it holds does not
// keep it out, nor does it reach the wire.
TEST( VectorEncoding, mergesNeighbours ) {
   using Vlans = std::vector< Vlan >;
   EXPECT_EQ( encoded( Vlans{ { 12 }, { 11 }, { 11 } } ), "vlan{12 JoinIn; 11 JoinIn; 11 JoinIn}" );
   EXPECT_EQ( encoded( Vlans{ { 65535 }, { 0 } } ), "vlan{65535 JoinIn; 0 JoinIn}" );

   using Talkers = std::vector< Talker >;
   EXPECT_EQ( encoded( Talkers{ { 8, 0x50 }, { 9, 0x50 } } ), "talker{0x8 JoinIn; 0x9 JoinIn}" );
   EXPECT_EQ( encoded( Talkers{ { 8, 0x50 }, { 8, 0x51 } } ), "talker{0x8 JoinIn; 0x8 JoinIn}" );
   EXPECT_EQ( encoded( Talkers{ { ~0ull, 0x50 }, { 0, 0x51 } } ),
              "talker{0xffffffffffffffff JoinIn, 0x0 JoinIn}" );
   EXPECT_EQ( encoded( Talkers{ { 8, 0xffff'ffff'ffff }, { 9, 0 } } ),
              "talker{0x8 JoinIn; 0x9 JoinIn}" );
   Talker const other{ 9, talker( 9 ).dmac, 99, 1, 2, 0, 1 };
   EXPECT_EQ( encoded( std::vector< FailedTalker >{ { talker( 8 ), 1, 1 }, { other, 2, 2 } } ),
              "failed{0x8 JoinIn, 0x9 JoinIn}" );

   EXPECT_EQ( encoded( std::vector< Listener >{ { ~0ull, Ready }, { 0, AskingFailed }, { 2 } } ),
              "listener{0xffffffffffffffff JoinIn Ready, 0x0 JoinIn AskingFailed; "
              "0x2 JoinIn Ready}" );
   using Domains = std::vector< Domain >;
   EXPECT_EQ( encoded( Domains{ { 5, 2, 10 }, { 6, 3, 99 } } ), "domain{5 JoinIn, 6 JoinIn}" );
   EXPECT_EQ( encoded( Domains{ { 5, 2 }, { 6, 2 } } ), "domain{5 JoinIn; 6 JoinIn}" );
   EXPECT_EQ( encoded( Domains{ { 5, 2 }, { 5, 3 } } ), "domain{5 JoinIn; 5 JoinIn}" );
   EXPECT_EQ( encoded( Domains{ { 255, 2 }, { 0, 3 } } ), "domain{255 JoinIn; 0 JoinIn}" );
   EXPECT_EQ( encoded( Domains{ { 5, 255 }, { 6, 0 } } ), "domain{5 JoinIn; 6 JoinIn}" );
}

TEST( LeaveAllMark, goesToTheNextVectorThatIsOpened ) {
   Sender mvrp( Mrp::MVRP );
   mvrp.send( Vlan{ 10 }, JoinIn ).mark().send( Vlan{ 11 }, JoinIn );
   EXPECT_TRUE( mvrp.isMarked() ); // an extension does not take it
   mvrp.leaveAll( vlanType );
   EXPECT_TRUE( mvrp.isMarked() ); // nor does a LeaveAll of its own
   mvrp.send( Vlan{ 20 }, JoinIn );
   EXPECT_FALSE( mvrp.isMarked() );
   mvrp.send( Vlan{ 21 }, JoinMt ).send( Vlan{ 30 }, JoinIn );
   EXPECT_EQ( mvrp.text(), "vlan{10 JoinIn, 11 JoinIn} vlan{LeaveAll; LeaveAll 20 JoinIn, "
                           "21 JoinMt; 30 JoinIn}" );
}

TEST( LeaveAllAlone, opensAMessageOfItsOwn ) {
   Sender msrp( Mrp::MSRP );
   msrp.send( talker( 8 ), New ).leaveAll( talkerType ).leaveAll( failedType );
   msrp.leaveAll( listenerType ).leaveAll( domainType ).leaveAll( domainType );
   EXPECT_EQ( msrp.text(), "talker{0x8 New} talker{LeaveAll} failed{LeaveAll} listener{LeaveAll} "
                           "domain{LeaveAll} domain{LeaveAll}" );
   EXPECT_EQ( msrp.leaveAll( domainType ).mrpdu(),
              fromHex( "00  04 04 00 08  20 00 00 00 00 00  00 00  00 00" ) );
}

// The value behind a null vector's FirstValue of zeros, at a distance of none, is zero.
TEST( LeaveAllAlone, takesInAValueThatIsAllZero ) {
   Sender mvrp( Mrp::MVRP );
   mvrp.leaveAll( vlanType ).send( Vlan{ 0 }, JoinIn ).send( Vlan{ 1 }, Mt );
   EXPECT_EQ( mvrp.text(), "vlan{LeaveAll 0 JoinIn, 1 Mt}" );
   mvrp.leaveAll( vlanType ).send( Vlan{ 1 }, JoinIn );
   EXPECT_EQ( mvrp.text(), "vlan{LeaveAll; 1 JoinIn}" );

   Sender msrp( Mrp::MSRP );
   msrp.leaveAll( listenerType ).send( Listener{ 0, ReadyFailed }, Lv ).send( Listener{ 1 }, New );
   EXPECT_EQ(
      hex( msrp.mrpdu() ),
      hex( fromHex( "00  03 08 00 0e  20 02 00 00 00 00 00 00 00 00  b4 e0  00 00  00 00" ) ) );
}

// In MVRP the EndMark ahead of a LeaveAll goes where the list would end if its last vector were
// its only one.
TEST( LeaveAllAlone, cutsAnMvrpFrameOfSeveralVectorsShort ) {
   Sender mvrp( Mrp::MVRP );
   mvrp.send( Vlan{ 10 }, JoinIn ).send( Vlan{ 12 }, JoinIn ).leaveAll( vlanType );
   EXPECT_EQ(
      hex( mvrp.mrpdu() ),
      hex( fromHex( "00  01 02  00 01 00 0a 24  00 00  01 02  20 00 00 00  00 00  00 00" ) ) );
   // The last vector is longer than the first by a byte, and so the mark stands one too far.
   mvrp.send( Vlan{ 10 }, JoinIn );
   for ( U16 id = 20; id < 24; ++id ) {
      mvrp.send( Vlan{ id }, JoinIn );
   }
   mvrp.leaveAll( vlanType );
   EXPECT_EQ( hex( mvrp.mrpdu() ), hex( fromHex( "00  01 02  00 01 00 0a 24  00  00 00  01 02"
                                                 "    20 00 00 00  00 00  00 00" ) ) );
}

} // namespace
} // namespace TestSupport
