// Frames that fail: what each moves in the counters, that what was said before the failure stands,
// and that the next frame is none the worse for it.
#include "tests/support/Capture.h"
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;

std::string const et1 = "Ethernet1";

Message const unknown( 9, 7, Bytes( 40, 0xff ) );

struct Row {
   char const * what;
   // numOfPktsProcessed and numOfJoinIndications apart, which follow from the rest.
   std::string moved;
   std::string joined; // "vlan 10 JoinIn, vlan 20 New"
   Bytes frame;
};

// What was joined since the last clear().
std::string joined( Participant const & participant ) {
   std::string all;
   for ( std::string const & line : participant.indications() ) { // "join vlan 10 New on Ethernet1"
      all += ( all.empty() ? "" : ", " ) + line.substr( 5, line.find( " on " ) - 5 );
   }
   return all;
}

// Each goes to a participant of its own, and behind it a frame with a fault of its own: that it is
// read and counted like any other shows that nothing is left of the one before.
void expectRows( Mrp::MrpApplication application, std::vector< Row > const & rows ) {
   bool const isMsrp = application == Mrp::MSRP;
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.what );
      Participant participant( application );
      participant.receive( et1, row.frame );
      EXPECT_EQ( joined( participant ), row.joined );
      std::string moved = row.moved + ( row.moved.empty() ? "" : " " ) + "numOfPktsProcessed=1";
      if ( auto const joins = participant.indications().size(); joins != 0 ) {
         moved += " numOfJoinIndications=" + std::to_string( joins );
      }
      EXPECT_EQ( participant.moved(), moved );

      participant.clear();
      Vector const next = isMsrp ? domains( { 99, 3, 2 }, { New } ) : vlans( 99, { New } );
      participant.receive( et1, Frame( participant.protocol(), { next, unknown } ) );
      EXPECT_EQ( joined( participant ), isMsrp ? "domain 99 New" : "vlan 99 New" );
      EXPECT_EQ( participant.moved(),
                 "numOfMalformedPkts=1 numOfPktsProcessed=1 numOfJoinIndications=1" );
   }
}

Vector const talker1 = talkers( 0x100, { JoinIn } );
Vector const domain6 = domains( { 6, 3, 2 }, { JoinIn } );
Vector const vlan10 = vlans( 10, { JoinIn } );
Vector const vlan20 = vlans( 20, { New } );
char const * const talker1Joined = "talker 0x100 JoinIn";
char const * const domain6Joined = "domain 6 JoinIn";
char const * const vlan10Joined = "vlan 10 JoinIn";

std::string const fine;
std::string const once = "numOfMalformedPkts=1";
std::string const twice = "numOfMalformedPkts=2";

Vector with( Vector vector, unsigned header ) { return vector.header( header ); }
Message open( Vector const & vector ) { return Message( vector ).noEndMark(); }

TEST( MalformedFrames, ofMsrp ) {
   expectRows(
      Mrp::MSRP,
      { { "list length 0", once, talker1Joined,
          msrpFrame( talker1, Message( domain6 ).listLength( 0 ) ) },
        { "list length too long", once, talker1Joined,
          msrpFrame( Message( talker1 ).listLengthOff( 2 ), domain6 ) },
        { "list length too short", once, talker1Joined,
          msrpFrame( Message( talker1 ).listLengthOff( -2 ), domain6 ) },
        { "unknown type", once, domain6Joined,
          msrpFrame( domain6, Message( talker1 ).type( 9 ), talker1 ) },
        { "no values, no LeaveAll", twice, domain6Joined,
          msrpFrame( message( domain6, with( domain6, 0x4000 ) ), talker1 ) },
        { "an empty list", twice, "", msrpFrame( Message( domainType, 4, {} ) ) },
        { "nothing but the EndMark", once, "", msrpFrame() },
        { "more values than there are bytes, and more to read", twice, talker1Joined,
          msrpFrame( talker1, with( domain6, 300 ) ) },
        { "more values than there are bytes, zeros, and a list of 2 bytes", twice, "",
          msrpFrame( Message( with( domain6, 300 ).eventBytes( { 0, 0 } ) ).listLength( 2 ) ) },
        { "listeners that end where their declarations begin", twice, "",
          msrpFrame( listeners( 1, std::vector< ListenerEvent >( 4, { JoinIn, Ready } ) ) )
             .cut( 5 ) },
        { "two bytes behind the list in place of its EndMark", once, domain6Joined,
          msrpFrame( open( domain6 ) ).noEndMark().append( { 0, 1 } ) },
        // Not failures.
        { "no EndMark at all", fine, talker1Joined, msrpFrame( open( talker1 ) ).noEndMark() },
        { "bytes behind the EndMark", fine, talker1Joined,
          msrpFrame( talker1 ).append( Bytes( 30, 0xff ) ) } } );
}

TEST( MalformedFrames, ofMvrp ) {
   expectRows(
      Mrp::MVRP,
      { { "wrong length", once, vlan10Joined,
          mvrpFrame( vlan10, Message( vlan20 ).attributeLength( 4 ) ) },
        { "no values, no LeaveAll", twice, "", mvrpFrame( with( vlan10, 0xc000 ) ) },
        // Two zero bytes at a bad vector pass for the EndMark of the list, which takes
        // the failure for its own.
        { "an empty list", once, vlan10Joined, mvrpFrame( vlan10, Message( 1, 2, {} ), vlan20 ) },
        { "more values than there are bytes, and zeros", once, "",
          mvrpFrame( with( vlan20, 300 ), vlan10 ) },
        { "more values than there are bytes, and more to read", twice, "",
          mvrpFrame( with( vlan10, 300 ), vlan20 ) } } );
}

// A type that the application lacks gets past the length check with a length of 0. Each of its
// VectorHeaders counts, and what follows decides.
TEST( MalformedFrames, withAnUnknownTypeOfLengthZero ) {
   std::string const counted = "numOfUnknownAttributeType=1";
   Message const one( 9, 0, fromHex( "00 01" ) );
   Message const three( 9, 0, fromHex( "00 01 20 00 1f ff" ) );
   expectRows( Mrp::MVRP, { { "one header", counted, vlan10Joined, mvrpFrame( one, vlan10 ) },
                            { "three headers, one a LeaveAll", "numOfUnknownAttributeType=3",
                              vlan10Joined, mvrpFrame( three, vlan10 ) } } );
   // Nothing is taken off the list length, so that none but the EndMark's own 2 is right.
   expectRows( Mrp::MSRP, { { "a list length of 2", counted, domain6Joined,
                              msrpFrame( Message( one ).listLength( 2 ), domain6 ) },
                            { "the right list length", counted + " " + once, "",
                              msrpFrame( one, domain6 ) } } );
}

TEST( MalformedFrames, areLoggedWithTheNumbersThatTheBoundWentBy ) {
   Participant msrp( Mrp::MSRP );
   LogCapture const log;
   // 8191 values: bytes of events, not values; a listener's of both packings together.
   msrp.receive( et1, msrpFrame( listeners( 1, { { New, Ready } } ).header( 0x3fff ) ) );
   msrp.receive( et1, msrpFrame( Message( 200, 0, fromHex( "00 01" ) ) ) );
   msrp.receive( et1, msrpFrame( Message( 200, 1, fromHex( "00 01 00" ) ) ) ); // is not
   EXPECT_THAT( log.of( "MRP_ERROR" ),
                ElementsAre( "Number of values 4779 does not match with the packet bytes 6 "
                             "received on Ethernet1",
                             "Unidentified attribute type 200 received on Ethernet1" ) );
}

std::string const newer = "numOfIncorrectPduVersion=1";

TEST( HigherVersion, ofMsrpSkipsWhatItDoesNotKnow ) {
   expectRows( Mrp::MSRP,
               { { "a message of unknown type", newer, "domain 6 JoinIn, talker 0x100 JoinIn",
                   msrpFrame( talker1, unknown, domain6 ).version( 1 ) },
                 { "a known type of another length", newer, domain6Joined,
                   msrpFrame( Message( 1, 26, Bytes( 40, 0xff ) ), domain6 ).version( 255 ) },
                 { "a list length of 0", newer + " " + once, "",
                   msrpFrame( Message( unknown ).listLength( 0 ), domain6 ).version( 1 ) },
                 { "a list length past the end", newer, domain6Joined,
                   msrpFrame( domain6, Message( unknown ).listLength( 0xffff ) ).version( 1 ) } } );
}

TEST( HigherVersion, ofMvrpStepsOverVectorsOneByOne ) {
   auto const vector = []( unsigned header, std::size_t length, U8 fill = 0xee ) {
      std::size_t const packed = ( ( header & 0x1fff ) + 2 ) / 3;
      return Vector( 9, Bytes( length, fill ), {} )
         .header( header )
         .eventBytes( Bytes( packed, fill ) );
   };
   Message const severalVectors =
      message( vector( 3, 7 ), vector( 4, 7 ), vector( 0x2000, 7 ), vector( 0xc007, 7 ) );
   expectRows(
      Mrp::MVRP,
      { { "of 3 and of 4 values, LeaveAll and the bits above it", newer, vlan10Joined,
          mvrpFrame( severalVectors, vlan10 ).version( 1 ) },
        { "of known type and another length", newer, vlan10Joined,
          mvrpFrame( Message( vector( 1, 5 ) ).type( 1 ), vlan10 ).version( 1 ) },
        { "just not too long", newer, vlan10Joined,
          mvrpFrame( vector( 3, 252 ), vlan10 ).version( 1 ) },
        // 276 bytes count as 20, and there stand zeros.
        { "longer than 255 bytes", newer, "",
          mvrpFrame( vector( 800, 7, 0 ), vlan10 ).version( 1 ) },
        // A step of 256 bytes would be one of none, for ever. Parsing goes on where it
        // stands: the header 20 00 as a message of type 32 and length 0, with one vector.
        { "of 256 bytes", newer + " numOfUnknownAttributeType=1", vlan10Joined,
          mvrpFrame( Message( 1, 254, fromHex( "20 00 00 01" ) ), vlan10 ).version( 1 ) } } );
}

// Where a frame ends in the middle of a vector, zeros stand for the rest: New for each value.
TEST( CutFrames, readAsIfZerosFollowed ) {
   expectRows( Mrp::MVRP, { { "half a VLAN", fine, "vlan 2560 New",
                              mvrpFrame( vlans( 0x0a0b, { JoinIn } ) ).cut( 6 ) },
                            { "half a vector", fine, "vlan 10 JoinIn, vlan 0 New",
                              mvrpFrame( open( vlan10 ) ).noEndMark().append( { 0, 1, 0 } ) } } );
   // The events of 8191 values, all of them behind the end: the longest walk there is.
   Participant msrp( Mrp::MSRP );
   msrp.receive( et1,
                 msrpFrame( Message( listeners( 0x11, { { JoinIn, Ready } } ).header( 0x1fff ) )
                               .listLength( 2 + 8 + 4779 + 2 ) )
                    .cut( 7 ) );
   EXPECT_EQ( msrp.moved(), "numOfPktsProcessed=1 numOfJoinIndications=8191" );
   EXPECT_TRUE( msrp.attribute( et1, listenerType, 8190 ) );
}

// No length does harm: each frame is counted, and leaves nothing for the next one.
TEST( CutFrames, endAnywhere ) {
   Frame const frames[] = {
      msrpFrame( message( talkers( 0x100, { New, JoinIn, Lv } ).leaveAll(), talkers( 2, { Mt } ) ),
                 failedTalkers( { talker( 3 ) }, { JoinIn } ), msrpLeaveAll( listenerType ),
                 listeners( 4, { { New, Ready }, { JoinIn, Ignore } } ), unknown, domain6 ),
      mvrpFrame( message( vlans( 10, { JoinIn, New, Lv, Mt } ), vlans( 20, { In } ).leaveAll() ),
                 unknown, vlan10 ) };
   for ( unsigned const which : { 0u, 1u, 2u, 3u } ) { // each in both versions
      Participant participant( which % 2 == 0 ? Mrp::MSRP : Mrp::MVRP );
      Bytes whole = Frame( frames[which % 2] ).version( which < 2 ? 0 : 1 );
      for ( U64 count = 1; whole.size() >= 14; whole.pop_back() ) {
         participant.receive( et1, whole );
         EXPECT_EQ( participant.counters().numOfPktsProcessed(), count++ );
         EXPECT_TRUE( participant.isIdle() );
      }
   }
}

} // namespace
} // namespace TestSupport
