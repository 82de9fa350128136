// What the agent publishes of bridge and spanning tree.
#include "mrp/platform/stp/Stp.h"

#include "mrp/platform/korv/RangeException.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>

namespace Stp {
namespace {

TEST( Role, hasTheNumbersThatTheProtocolGoesBy ) {
   for ( auto const & [number, name] : { std::pair( 0u, "unknown" ),
                                         { 1u, "root" },
                                         { 2u, "designated" },
                                         { 3u, "alternate" },
                                         { 9u, "9" } } ) {
      std::ostringstream out;
      out << static_cast< MstiPortStatus::Role >( number );
      EXPECT_EQ( out.str(), name );
   }
}

} // namespace
} // namespace Stp

namespace Bridging {
namespace {

TEST( VlanId, isANumberOfItsRange ) {
   EXPECT_EQ( VlanId().value(), 0 );
   EXPECT_EQ( VlanId( 1 ).value(), 1 );
   EXPECT_EQ( VlanId( 4094 ).value(), 4094 );
   EXPECT_LT( VlanId( 7 ), VlanId( 8 ) );
   EXPECT_NE( VlanId( 7 ).hash(), VlanId( 8 ).hash() );
   EXPECT_EQ( Korv::fromText< VlanId >( "4094" ), VlanId( 4094 ) );
   EXPECT_EQ( Korv::fromText< VlanId >( "0" ), VlanId() );
   EXPECT_THROW( Korv::fromText< VlanId >( "4188" ), Korv::RangeException );
   for ( Korv::U16 const value : std::initializer_list< Korv::U16 >{ 0, 4095, 65535 } ) {
      try {
         VlanId const none( value );
         ADD_FAILURE() << value;
      } catch ( Korv::RangeException const & refusal ) {
         EXPECT_STREQ( refusal.what(), "VlanId::value < 1 or > 4094 not allowed" );
      }
   }
}

} // namespace
} // namespace Bridging
