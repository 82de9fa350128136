// What the values of a vector are: the steps from its FirstValue, the events, a listener's
// declarations, and the bytes that the database keeps.
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";

// The values, as the application finds them in its join indications.
std::vector< std::string > joinedValues( Mrp::MrpApplication application, Vector const & vector ) {
   Participant participant( application );
   participant.receive( et1, Frame( participant.protocol(), { vector } ) );
   std::vector< std::string > values;
   for ( Indication const & indication : participant.lib().indications ) {
      values.push_back( hex( indication.value ) );
      // What the application was shown is what the database keeps.
      auto const kept = participant.attribute( et1, indication.type, indication.key );
      EXPECT_EQ( hex( kept ? kept->value : Bytes() ), values.back() );
   }
   return values;
}

TEST( VectorValues, stepFromTheFirst ) {
   Talker const first{ .streamId = 0xffff'ffff'ffff'fffe,
                       .dmac = 0x91e0'f000'00fe,
                       .vlanId = 0xffff,
                       .maxFrameSize = 0xfffe,
                       .maxIntervalFrames = 0xfffd,
                       .priorityAndRank = 0xe0,
                       .accumulatedLatency = 0xffff'ffff };
   auto const plus = []( Talker t, U64 i ) {
      t.streamId += i;
      t.dmac = ( t.dmac + i ) & 0xffff'ffff'ffff;
      return t;
   };
   std::vector< Event > const three( 3, New );
   EXPECT_THAT( joinedValues( Mrp::MSRP, talkers( first, three ) ),
                ElementsAre( hex( wire( first ) ), hex( wire( plus( first, 1 ) ) ),
                             hex( wire( plus( first, 2 ) ) ) ) );
   Talker highest = first;
   highest.dmac = 0xffff'ffff'ffff;
   FailedTalker const failed{ highest, 0xffff'ffff'ffff'ffff, 0xff };
   FailedTalker next = failed;
   next.talker = plus( highest, 1 ); // the address is all zero now
   EXPECT_THAT( joinedValues( Mrp::MSRP, failedTalkers( failed, { New, JoinIn } ) ),
                ElementsAre( hex( wire( failed ) ), hex( wire( next ) ) ) );
   EXPECT_THAT( joinedValues( Mrp::MSRP, domains( { 254, 255, 0xffff }, three ) ),
                ElementsAre( "fe ff ff ff", "ff 00 ff ff", "00 01 ff ff" ) );
   EXPECT_THAT( joinedValues( Mrp::MVRP, vlans( 65534, three ) ),
                ElementsAre( "ff fe", "ff ff", "00 00" ) );
}

TEST( VectorValues, loseTheUndefinedBitsBesideTheRank ) {
   for ( U8 const defined : { U8{ 0x70 }, U8{ 0x60 } } ) { // with the rank, and without
      Talker const expected{ .streamId = 1, .priorityAndRank = defined };
      Talker received = expected;
      received.priorityAndRank |= 0x0f;
      EXPECT_THAT( joinedValues( Mrp::MSRP, talkers( received, { New } ) ),
                   ElementsAre( hex( wire( expected ) ) ) );
      EXPECT_THAT( joinedValues( Mrp::MSRP, failedTalkers( { received }, { New } ) ),
                   ElementsAre( hex( wire( FailedTalker{ expected } ) ) ) );
   }
}

// Where a listener's FourPackedEvents begin moves with the number of values.
TEST( VectorValues, ofListenersTakeTheirDeclarationsFromBehindTheEvents ) {
   static constexpr Declaration cycle[] = { Ready, AskingFailed, Ignore, ReadyFailed, Ignore };
   for ( std::size_t n = 1; n <= 13; ++n ) {
      SCOPED_TRACE( n );
      std::vector< ListenerEvent > events;
      std::vector< std::string > expected;
      for ( std::size_t i = 0; i < n; ++i ) {
         events.push_back( { i % 2 == 0 ? JoinIn : New, cycle[i % 5] } );
         expected.push_back( hex( stored( Listener{ 0xfe + i, cycle[i % 5] } ) ) );
      }
      EXPECT_EQ( joinedValues( Mrp::MSRP, listeners( 0xfe, events ) ), expected );
   }
}

TEST( VectorEvents, standThreeToAByte ) {
   auto const joined = []( Vector const & vector ) { return joinedValues( Mrp::MVRP, vector ); };
   EXPECT_THAT( joined( vlans( 10, { New, JoinIn, In, JoinMt, Mt, Lv, Lv, JoinIn } ) ),
                ElementsAre( "00 0a", "00 0b", "00 0d", "00 11" ) );
   // Positions beyond the last value are not read, whatever they hold.
   Bytes const fullOfJoins = fromHex( "2b 2b 2b" );
   EXPECT_EQ( joined( vlans( 10, { New } ).eventBytes( fullOfJoins ).header( 7 ) ).size(), 7u );
   // 0xff is 7, 0 and 3: the first is no event, and yet the other two are.
   Vector const three = vlans( 10, { New, New, New } );
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 0xff } ) ), ElementsAre( "00 0b", "00 0c" ) );
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 216 } ) ), ElementsAre( "00 0b", "00 0c" ) );
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 215 } ) ), IsEmpty() );
}

// Bit 13 alone is LeaveAll, the two above it are nothing. A LeaveAll puts the own one off.
TEST( VectorHeader, hasOneBitThatMeansLeaveAll ) {
   for ( unsigned const header : { 0x0001u, 0x2001u, 0x4001u, 0x8001u, 0xe001u } ) {
      SCOPED_TRACE( header );
      bool const leaveAll = ( header & 0x2000 ) != 0;
      Participant mvrp( Mrp::MVRP );
      mvrp.advanceTo( 5 );
      mvrp.sm().parseContext()->leaveAllIs( leaveAll ? 0 : 1 );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ).header( header ) ) );
      EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1" ) );
      EXPECT_EQ( mvrp.sm().parseContext()->leaveAll(), leaveAll ? 1 : 0 );
      mvrp.clear();
      mvrp.advanceTo( 10 );
      EXPECT_EQ( mvrp.sent().empty(), leaveAll );
   }
}

TEST( LeaveAllAlone, makesNoAttributeAndLeavesAnInEventInTheContext ) {
   auto const expectNothingMade = []( Mrp::MrpApplication application, Vector const & vector ) {
      Participant participant( application );
      Mrp::MrpParseContext & context = *participant.sm().parseContext();
      context.attributeKeyIs( 77 );
      Vector filled = vector; // a FirstValue that is not zero means nothing either
      filled.firstValue( Bytes( filled.attributeLength(), 0x11 ) );
      participant.receive( et1, Frame( participant.protocol(), { vector, filled } ) );
      EXPECT_EQ( participant.moved(), "numOfPktsProcessed=1" ); // and so the list lengths are right
      EXPECT_EQ( context.attributeKey(), 0u );
      EXPECT_EQ( context.attributeEvent(), In );
      EXPECT_EQ( context.eventsCounter(), 2u );
      EXPECT_TRUE( participant.sm().mrpAttrIter().empty() );
   };
   expectNothingMade( Mrp::MVRP, vlanLeaveAll() );
   for ( U8 const type : { talkerType, failedType, listenerType, domainType } ) {
      expectNothingMade( Mrp::MSRP, msrpLeaveAll( type ) );
   }
}

} // namespace
} // namespace TestSupport
