#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"

#include <gtest/gtest.h>

#include <vector>

namespace Mrp {
namespace {

TEST( Keys, hashTheirFieldsBytesInOrder ) {
   // 0xca2e9442 is a published value of the function, for the one byte "a".
   EXPECT_EQ( Korv::hashOf( U8{ 'a' } ), 0xca2e9442u );
   // 03, and the number's bytes, the least significant first.
   EXPECT_EQ( MrpParsedAttributeKey( 3, 0x8102030405060708 ).hash(), 0xf9889604u );
}

// Interfaces are in the order of their first mention.
TEST( Keys, orderGoesFieldByFieldAndNumbersAreUnsigned ) {
   Pelk::IntfId const first( "z-first" );
   Pelk::IntfId const second( "a-second" );
   constexpr U64 topBit = U64{ 1 } << 63;
   std::vector< MrpAttribute > const ascending{ { Pelk::IntfId(), 9, 9 }, { first, 1, 0 },
                                                { first, 1, topBit - 1 }, { first, 1, topBit },
                                                { first, 255, 0 },        { second, 0, 0 } };
   for ( std::size_t i = 1; i < ascending.size(); ++i ) {
      EXPECT_LT( ascending[i - 1], ascending[i] );
   }
}

TEST( ValueIndex, endsAt64 ) {
   EXPECT_EQ( Korv::fromText< ValueIndex >( "64" ), ValueIndex( 64 ) );
   for ( U64 const value : { 65u, 256u, 320u } ) {
      try {
         ADD_FAILURE() << ValueIndex( value ) << " for " << value;
      } catch ( Korv::RangeException const & failure ) {
         EXPECT_STREQ( failure.what(),
                       "ValueIndex::value < ValueIndex::min or > ValueIndex::max not allowed" );
      }
   }
   EXPECT_THROW( Korv::fromText< ValueIndex >( "320" ), Korv::RangeException );
}

} // namespace
} // namespace Mrp
