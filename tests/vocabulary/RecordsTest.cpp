// Records against bytes written by hand. Values have a different byte in each place, so that a
// field out of place or out of order shows.
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace Mrp {
namespace {

using Bytes = std::vector< U8 >;

template < class T >
Bytes bytesOf( T const & record ) {
   Bytes bytes( sizeof record );
   std::memcpy( bytes.data(), &record, sizeof record );
   return bytes;
}

// At an odd address, as in a frame.
template < class T >
T overlaid( Bytes const & bytes ) {
   Bytes frame( 1 );
   frame.insert( frame.end(), bytes.begin(), bytes.end() );
   return *reinterpret_cast< T const * >( frame.data() + 1 );
}

template < class T >
void expectBytes( T const & record, Bytes const & bytes ) {
   EXPECT_EQ( bytesOf( record ), bytes );
   EXPECT_EQ( overlaid< T >( bytes ), record );
   EXPECT_EQ( bytesOf( T() ), Bytes( bytes.size(), 0 ) );
   for ( std::size_t i = 0; i < bytes.size(); ++i ) {
      Bytes other = bytes;
      other[i] ^= 1;
      EXPECT_NE( overlaid< T >( other ), record ) << "byte " << i;
   }
}

MsrpTalkerAdvertiseAttribute const talker( 0x0102030405060708,
                                           { { 0x11, 0x12, 0x13, 0x14, 0x15, 0x16 }, 0x2122 },
                                           { 0x3132, 0x3334 }, { 5, true }, 0x41424344 );
Bytes const talkerBytes{ 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x11,
                         0x12, 0x13, 0x14, 0x15, 0x16, 0x21, 0x22, 0x31, 0x32,
                         0x33, 0x34, 0xB0, 0x41, 0x42, 0x43, 0x44 };

Bytes operator+( Bytes left, Bytes const & right ) {
   left.insert( left.end(), right.begin(), right.end() );
   return left;
}

TEST( Records, ofAttributes ) {
   expectBytes( talker, talkerBytes );
   expectBytes( MsrpTalkerFailedAttribute( talker, { 0x5152535455565758, 0x59 } ),
                talkerBytes + Bytes{ 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59 } );
   expectBytes( MsrpListenerStreamAttribute( 0x0102030405060708 ), { 1, 2, 3, 4, 5, 6, 7, 8 } );
   expectBytes( MsrpDomainAttribute( 6, 3, 0x0FA2 ), { 6, 3, 0x0F, 0xA2 } );
   expectBytes( MvrpVlanAttribute( 0x0123 ), { 0x01, 0x23 } );
   expectBytes( MsrpListenerAttribute( 0x0102030405060708, readyFailed ),
                { 1, 2, 3, 4, 5, 6, 7, 8, 3, 0, 0, 0 } );
}

TEST( Records, ofMessagesAndVectors ) {
   expectBytes( MsrpMessageHeader( 2, 34, 0x0102 ), { 2, 34, 1, 2 } );
   expectBytes( MvrpMessageHeader( 1, 2 ), { 1, 2 } );
   expectBytes( MsrpTalkerVector( 0x2001, talker, 36 ),
                Bytes{ 0x20, 0x01 } + talkerBytes + Bytes{ 36 } );
   expectBytes( MsrpListenerVector( 1, MsrpListenerStreamAttribute( 9 ), 180 ),
                { 0, 1, 0, 0, 0, 0, 0, 0, 0, 9, 180 } );
   expectBytes( MvrpVlanVector( 1, MvrpVlanAttribute( 10 ), 36 ), { 0, 1, 0, 10, 36 } );
}

TEST( PriorityAndRank, hasThreeViewsOfOneByte ) {
   auto const seen = overlaid< PriorityAndRank >( { 0x7A } );
   EXPECT_EQ( seen.priority(), 3 );
   EXPECT_TRUE( seen.rank() );
   EXPECT_EQ( seen.undefined(), 0x0A );

   auto const rebuilt = PriorityAndRank::fromWire( 0x7F );
   EXPECT_EQ( rebuilt.value(), 0x70 );
   EXPECT_EQ( rebuilt, PriorityAndRank( 3, true ) );
   EXPECT_EQ( PriorityAndRank( 7, false ).value(), 0xE0 );
}

TEST( PriorityAndRank, comparesAsTheWholeByte ) {
   auto const plain = PriorityAndRank( 3, true );
   auto const withUndefinedBit = overlaid< PriorityAndRank >( { 0x71 } );
   EXPECT_TRUE( plain < withUndefinedBit && plain <= withUndefinedBit &&
                plain != withUndefinedBit );
   EXPECT_TRUE( withUndefinedBit > plain && withUndefinedBit >= plain );
   EXPECT_TRUE( PriorityAndRank( 4, false ) > withUndefinedBit );
}

} // namespace
} // namespace Mrp
