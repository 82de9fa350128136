// Records against bytes written by hand. Values have a different byte in each place, so that a
// field out of place or out of order shows. Message headers and vectors are what the tests of the
// receive path read.
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace Mrp {
namespace {

using Bytes = std::vector< U8 >;

// At an odd address, as in a frame.
template < class T >
T overlaid( Bytes const & bytes ) {
   Bytes frame( 1 );
   frame.insert( frame.end(), bytes.begin(), bytes.end() );
   return *reinterpret_cast< T const * >( frame.data() + 1 );
}

template < class T >
void expectBytes( T const & record, Bytes const & expected ) {
   Bytes bytes( sizeof record );
   std::memcpy( bytes.data(), &record, sizeof record );
   EXPECT_EQ( bytes, expected );
   EXPECT_EQ( overlaid< T >( expected ), record );
}

TEST( Records, standInTheBytesOfTheWire ) {
   MsrpTalkerAdvertiseAttribute const talker( 0x0102030405060708,
                                              { { 0x11, 0x12, 0x13, 0x14, 0x15, 0x16 }, 0x2122 },
                                              { 0x3132, 0x3334 }, { 5, true }, 0x41424344 );
   expectBytes( MsrpTalkerFailedAttribute( talker, { 0x5152535455565758, 0x59 } ),
                { 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x11, 0x12, 0x13, 0x14,
                  0x15, 0x16, 0x21, 0x22, 0x31, 0x32, 0x33, 0x34, 0xB0, 0x41, 0x42, 0x43,
                  0x44, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59 } );
   expectBytes( MsrpDomainAttribute( 6, 3, 0x0FA2 ), { 6, 3, 0x0F, 0xA2 } );
   expectBytes( MvrpVlanAttribute( 0x0123 ), { 0x01, 0x23 } );
   // Of memory: the declaration's least significant byte comes first.
   expectBytes( MsrpListenerAttribute( 0x0102030405060708, readyFailed ),
                { 1, 2, 3, 4, 5, 6, 7, 8, 3, 0, 0, 0 } );
}

TEST( PriorityAndRank, hasThreeViewsOfOneByteAndComparesAsTheWhole ) {
   auto const seen = overlaid< PriorityAndRank >( { 0x7A } );
   EXPECT_EQ( seen.priority(), 3 );
   EXPECT_TRUE( seen.rank() );
   EXPECT_EQ( seen.undefined(), 0x0A );

   auto const rebuilt = PriorityAndRank::fromWire( 0x7F );
   EXPECT_EQ( rebuilt.value(), 0x70 );
   EXPECT_EQ( rebuilt, PriorityAndRank( 3, true ) );
   EXPECT_LT( rebuilt, seen );
   EXPECT_LT( seen, PriorityAndRank( 4, false ) );
}

} // namespace
} // namespace Mrp
