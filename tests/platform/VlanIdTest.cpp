#include "mrp/platform/bridging/VlanId.h"

#include "mrp/platform/korv/RangeException.h"

#include <gtest/gtest.h>

namespace Bridging {
namespace {

TEST( VlanId, isANumberOfItsRange ) {
   EXPECT_EQ( VlanId().value(), 0 );
   EXPECT_EQ( VlanId( 1 ).value(), 1 );
   EXPECT_EQ( Korv::fromText< VlanId >( "4094" ), VlanId( 4094 ) );
   EXPECT_EQ( Korv::fromText< VlanId >( "0" ), VlanId() );
   for ( char const * const text : { "4095", "4188", "65535" } ) {
      EXPECT_THROW( Korv::fromText< VlanId >( text ), Korv::RangeException ) << text;
   }
   try {
      VlanId const none( 4095 );
      ADD_FAILURE();
   } catch ( Korv::RangeException const & refusal ) {
      EXPECT_STREQ( refusal.what(), "VlanId::value < 1 or > 4094 not allowed" );
   }
}

} // namespace
} // namespace Bridging
