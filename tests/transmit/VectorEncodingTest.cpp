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

// The FourPackedEvents move each time the ThreePackedEvents grow, and take the new one along.
TEST( VectorEncoding, growsAListenerVectorByteByByte ) {
   static constexpr Declaration cycle[] = { Ready, AskingFailed, ReadyFailed, Ready, Ignore };
   static constexpr Event events[] = { JoinIn, Lv, New, Mt };
   std::string const vectors[] = { "24 80",          "42 90",          "42 9c",
                                   "42 90 9e",       "42 96 9e 00",    "42 9b 9e 20",
                                   "42 9b 00 9e 24", "42 9b 18 9e 27", "42 9b 19 9e 27 80" };
   for ( std::size_t n = 1; n <= 9; ++n ) {
      SCOPED_TRACE( n );
      Sender msrp( Mrp::MSRP );
      for ( std::size_t i = 0; i < n; ++i ) {
         msrp.send( Listener{ 0xff + i, cycle[i % 5] }, events[i % 4] );
      }
      Bytes expected = fromHex( "00  03 08 00 00  00 00  00 00 00 00 00 00 00 ff" + vectors[n - 1] +
                                "00 00 00 00" );
      expected[4] = static_cast< U8 >( expected.size() - 5 - 2 ); // the list's length
      expected[6] = static_cast< U8 >( n );
      EXPECT_EQ( hex( msrp.mrpdu() ), hex( expected ) );
   }
}

template < class Value >
std::string encoded( std::vector< Value > const & values ) {
   Sender sender( std::is_same_v< Value, Vlan > ? Mrp::MVRP : Mrp::MSRP );
   for ( Value const & value : values ) {
      sender.send( value, JoinIn );
   }
   return sender.text();
}

TEST( Merging, ofVlansGoesUpwardByOne ) {
   using Values = std::vector< Vlan >;
   EXPECT_EQ( encoded( Values{ { 10 }, { 12 }, { 13 } } ),
              "vlan{10 JoinIn; 12 JoinIn, 13 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 12 }, { 11 }, { 11 } } ),
              "vlan{12 JoinIn; 11 JoinIn; 11 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 65535 }, { 0 } } ), "vlan{65535 JoinIn; 0 JoinIn}" );
}

TEST( Merging, ofTalkersLooksAtStreamAndAddressAlone ) {
   using Values = std::vector< Talker >;
   U64 const top = 0xffff'ffff'ffff;
   EXPECT_EQ( encoded( Values{ { 8, 0x50 }, { 9, 0x50 } } ), "talker{0x8 JoinIn; 0x9 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 8, 0x50 }, { 8, 0x51 } } ), "talker{0x8 JoinIn; 0x8 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { ~0ull, 0x50 }, { 0, 0x51 } } ),
              "talker{0xffffffffffffffff JoinIn, 0x0 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 8, top }, { 9, 0 } } ), "talker{0x8 JoinIn; 0x9 JoinIn}" );

   // What else a talker says does not keep it out of the vector, and does not reach the wire.
   Talker other = talker( 9 );
   other.vlanId = 99;
   other.maxFrameSize = 1;
   other.priorityAndRank = 0;
   other.accumulatedLatency = 1;
   EXPECT_EQ( encoded( Values{ talker( 8 ), other } ), "talker{0x8 JoinIn, 0x9 JoinIn}" );
   EXPECT_EQ( encoded( std::vector< FailedTalker >{ { talker( 8 ), 1, 1 }, { other, 2, 2 } } ),
              "failed{0x8 JoinIn, 0x9 JoinIn}" );
}

TEST( Merging, ofListenersAndDomains ) {
   EXPECT_EQ( encoded( std::vector< Listener >{ { ~0ull, Ready }, { 0, AskingFailed }, { 2 } } ),
              "listener{0xffffffffffffffff JoinIn Ready, 0x0 JoinIn AskingFailed; "
              "0x2 JoinIn Ready}" );
   using Values = std::vector< Domain >;
   EXPECT_EQ( encoded( Values{ { 5, 2, 10 }, { 6, 3, 99 }, { 7, 4, 10 } } ),
              "domain{5 JoinIn, 6 JoinIn, 7 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 5, 2 }, { 6, 2 } } ), "domain{5 JoinIn; 6 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 5, 2 }, { 5, 3 } } ), "domain{5 JoinIn; 5 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 255, 2 }, { 0, 3 } } ), "domain{255 JoinIn; 0 JoinIn}" );
   EXPECT_EQ( encoded( Values{ { 5, 255 }, { 6, 0 } } ), "domain{5 JoinIn; 6 JoinIn}" );
}

// All six events, in all three places of a byte.
TEST( Merging, packsEachEventInEachPlace ) {
   Sender mvrp( Mrp::MVRP );
   std::string expected = "vlan{";
   for ( unsigned i = 0; i < 216 * 3; ++i ) {
      static constexpr unsigned places[] = { 36, 6, 1 };
      auto const event = static_cast< Event >( i / 3 / places[i % 3] % 6 );
      mvrp.send( Vlan{ static_cast< U16 >( i ) }, event );
      expected += ( i == 0 ? "" : ", " ) + std::to_string( i ) + ' ' + name( event );
   }
   EXPECT_EQ( mvrp.text(), expected + "}" );
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

TEST( LeaveAllMark, survivesTheGrowthOfItsVector ) {
   auto const expectMark = []( auto const & valueOf ) {
      Sender msrp( Mrp::MSRP );
      msrp.mark();
      for ( U8 i = 1; i <= 9; ++i ) {
         msrp.send( valueOf( i ), New );
      }
      EXPECT_EQ( number( msrp.mrpdu(), 5, 2 ), 0x2009u );
      EXPECT_EQ( decode( msrp.sent().back().bytes ).values().size(), 9u );
      EXPECT_THAT( decode( msrp.sent().back().bytes ).faults, testing::IsEmpty() );
   };
   expectMark( []( U8 i ) { return talker( i ); } );
   expectMark( []( U8 i ) { return Listener{ i }; } );
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
