#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace Mrp {
namespace {

Pelk::IntfId const et1( "et1" );
Pelk::IntfId const et2( "et2" );
constexpr U64 topBit = U64{ 1 } << 63;

U32 hashOfBytes( std::string const & bytes ) {
   U32 h = 0;
   for ( char const c : bytes ) {
      h = ( h + static_cast< unsigned char >( c ) ) * 1025u;
      h = h ^ h / 64;
   }
   h = h + 8 * h;
   h = h ^ h / 2048;
   return ( h << 15 ) + h;
}

std::string memoryOf( Pelk::IntfId intfId ) {
   std::string bytes( 8, '\0' );
   std::memcpy( bytes.data(), &intfId, 8 );
   return bytes;
}

TEST( Keys, hashTheirFieldsBytesInOrder ) {
   std::string const type3( "\x03" );
   std::string const number( "\x08\x07\x06\x05\x04\x03\x02\x81", 8 );
   U64 const key = 0x8102030405060708;

   EXPECT_EQ( MrpAttribute( et2, 3, key ).hash(), hashOfBytes( memoryOf( et2 ) + type3 + number ) );
   EXPECT_EQ( MrpParsedAttributeKey( 3, key ).hash(), hashOfBytes( type3 + number ) );
   EXPECT_EQ( MrpLeaveAllKey( et2, 3 ).hash(), hashOfBytes( memoryOf( et2 ) + type3 ) );
   EXPECT_EQ( MrpAttrIterKey( et2, 3 ).hash(), MrpLeaveAllKey( et2, 3 ).hash() );
   EXPECT_EQ( et2.hash(), hashOfBytes( memoryOf( et2 ) ) );
   EXPECT_EQ( hashOfBytes( std::string( "a" ) ), 0xca2e9442u ); // a published value of the function
}

// Every member is below all that follow it.
template < class K >
void expectAscending( std::vector< K > const & keys ) {
   for ( std::size_t i = 0; i < keys.size(); ++i ) {
      for ( std::size_t j = 0; j < keys.size(); ++j ) {
         EXPECT_EQ( keys[i] < keys[j], i < j ) << keys[i] << " and " << keys[j];
         EXPECT_EQ( keys[i] >= keys[j], i >= j );
         EXPECT_EQ( keys[i] == keys[j], i == j );
      }
   }
}

TEST( Keys, orderGoesFieldByFieldAndNumbersAreUnsigned ) {
   expectAscending< MrpAttribute >( { { Pelk::IntfId(), 9, 9 },
                                      { et1, 1, 0 },
                                      { et1, 1, topBit - 1 },
                                      { et1, 1, topBit },
                                      { et1, 255, 0 },
                                      { et2, 0, 0 },
                                      { et2, 0, ~U64{ 0 } } } );
   expectAscending< MrpParsedAttributeKey >(
      { { 0, ~U64{ 0 } }, { 1, 5 }, { 1, topBit }, { 2, 0 }, { 128, 0 } } );
   expectAscending< MrpLeaveAllKey >( { { et1, 200 }, { et2, 1 }, { et2, 2 } } );
   expectAscending< MrpAttrIterKey >( { { et1, 200 }, { et2, 1 }, { et2, 2 } } );
}

TEST( ValueIndex, endsAt64 ) {
   EXPECT_EQ( ValueIndex( 64 ).value(), 64 );
   EXPECT_EQ( Korv::fromText< ValueIndex >( "64" ), ValueIndex( 64 ) );
   EXPECT_EQ( stringValue( ValueIndex( 64 ) ), "64" );
   EXPECT_EQ( ValueIndex::unchecked( 65 ).value(), 65 );
   for ( char const * text : { "65", "255", "256", "320" } ) {
      try {
         Korv::fromText< ValueIndex >( text );
         ADD_FAILURE() << text << " was read";
      } catch ( Korv::RangeException const & failure ) {
         EXPECT_STREQ( failure.what(),
                       "ValueIndex::value < ValueIndex::min or > ValueIndex::max not allowed" );
      }
   }
   EXPECT_THROW( ValueIndex( 65 ), Korv::RangeException );
   EXPECT_THROW( ValueIndex( 256 ), Korv::RangeException );
}

} // namespace
} // namespace Mrp
