#include "mrp/vocabulary/Wrappers.h"

#include "mrp/platform/pelk/PktManager.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Mrp {
namespace {

Korv::Ptr< Pelk::Pkt > packetOf( std::vector< U8 > const & bytes ) {
   auto pkt = Pelk::globalPktManager().newPkt();
   pkt->newSharedHeadData( bytes.size() );
   std::memcpy( pkt->frontData(), bytes.data(), bytes.size() );
   return pkt;
}

// The message at offset 3, and zeros enough behind it.
Korv::Ptr< Pelk::Pkt > packetWithMessage() {
   std::vector< U8 > bytes{ 0xFF, 0xFF, 0xFF, 3, 8, 0, 13, 0x20, 1,  0,
                            0,    0,    0,    0, 0, 0, 9,  36,   128 };
   bytes.resize( 100 );
   return packetOf( bytes );
}

TEST( Wrappers, showTheRecordAtTheirOffset ) {
   auto const pkt = packetWithMessage();
   auto const message = msrpMessageHeaderWrapperFactory( pkt, 3 );
   EXPECT_EQ( message->attributeType(), listenerVector );
   EXPECT_EQ( message->attributeLength(), 8 );
   EXPECT_EQ( message->attributeListLength(), 13 );

   auto const vector = msrpListenerVectorWrapperFactory( pkt, 7 );
   EXPECT_EQ( vector->vectorHeader(), 0x2001 );
   EXPECT_EQ( vector->firstValue().streamId(), 9u );
   EXPECT_EQ( vector->vector(), 36 );
   EXPECT_EQ( reinterpret_cast< U8 * >( vector->header() ), pkt->frontData() + 7 );
   EXPECT_EQ( vector->pkt(), pkt );
   EXPECT_EQ( vector->offset(), 7u );
}

TEST( Wrappers, existOnlyForAPacket ) {
   try {
      msrpTalkerVectorWrapperFactory( nullptr, 0 );
      ADD_FAILURE() << "a wrapper of no packet";
   } catch ( Korv::RangeException const & failure ) {
      EXPECT_STREQ( failure.what(), "null ValidPtr" );
   }
}

// The record would fit; the wrapper's own size does not.
TEST( WrappersDeathTest, needRoomForThemselvesBehindTheOffset ) {
   auto const pkt = packetOf( std::vector< U8 >( 64 ) );
   U32 const last = 64 - sizeof( MvrpVlanVectorWrapper );
   EXPECT_TRUE( mvrpVlanVectorWrapperFactory( pkt, last ) );
   EXPECT_DEATH( mvrpVlanVectorWrapperFactory( pkt, last + 1 ),
                 "\\( offset_ \\+ sizeof\\( MvrpVlanVectorWrapper \\) \\) <= "
                 "pkt_->frontBytes\\(\\)" );
   EXPECT_DEATH( msrpTalkerFailedVectorWrapperFactory( pkt, 64 ), "MsrpTalkerFailedVectorWrapper" );
   EXPECT_DEATH( msrpMessageHeaderWrapperFactory( pkt, ~0u ), "MsrpMessageHeaderWrapper" );
}

} // namespace
} // namespace Mrp
