// The two values of the network that stand in keys and records.
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/platform/pelk/IntfId.h"

#include <gtest/gtest.h>

namespace Pelk {
namespace {

TEST( IntfId, nameStaysWhereItIsAsTheTableGrows ) {
   std::string const & name = IntfId( "stays" ).stringValue();
   char const * const text = name.c_str();
   for ( int i = 0; i < 5000; ++i ) {
      IntfId const other( "grows" + std::to_string( i ) );
      ASSERT_EQ( other.stringValue(), "grows" + std::to_string( i ) );
   }
   EXPECT_EQ( name, "stays" );
   EXPECT_EQ( IntfId( "stays" ).stringValue().c_str(), text );
}

TEST( EthAddr, readsAndPrintsItsTextForm ) {
   EthAddr const addr( 0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E );
   EXPECT_EQ( addr.stringValue(), "01:80:c2:00:00:0e" );
   EXPECT_EQ( addr.number(), 0x0180C200000Eu );
   EXPECT_EQ( EthAddr( "01:80:C2:00:00:0E" ), addr );
   EXPECT_THROW( Korv::fromText< EthAddr >( "01:80:C2:00:00:0e" ), Korv::RangeException );
   for ( char const * text :
         { "", "01:80:c2:00:00:0", "01:80:c2:00:00:0e:", "01-80-c2-00-00-0e", "01:80:c2:00:00:0g",
           "0g:80:c2:00:00:0e", "01:80:c2:00:000:e", " 1:80:c2:00:00:0e", "0180c200000e" } ) {
      EXPECT_THROW( EthAddr{ std::string_view( text ) }, Korv::RangeException ) << text;
   }
}

} // namespace
} // namespace Pelk
