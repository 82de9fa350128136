#include "mrp/vocabulary/Wrappers.h"

#include "mrp/platform/pelk/PktManager.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Mrp {
namespace {

// A message at offset 3, and zeros enough behind it.
Korv::Ptr< Pelk::Pkt > packetWithMessage() {
   constexpr U8 bytes[100] = { 0xFF, 0xFF, 0xFF, 3, 8, 0, 13, 0x20, 1,  0,
                               0,    0,    0,    0, 0, 0, 9,  36,   128 };
   auto pkt = Pelk::globalPktManager().newPkt();
   pkt->newSharedHeadData( sizeof bytes );
   std::memcpy( pkt->frontData(), bytes, sizeof bytes );
   return pkt;
}

TEST( Wrappers, showTheRecordAtTheirOffset ) {
   auto const pkt = packetWithMessage();
   EXPECT_EQ( msrpMessageHeaderWrapperFactory( pkt, 3 )->attributeListLength(), 13 );
   EXPECT_EQ( msrpListenerVectorWrapperFactory( pkt, 7 )->firstValue().streamId(), 9u );
   EXPECT_THROW( msrpTalkerVectorWrapperFactory( nullptr, 0 ), Korv::RangeException );
}

// The record would fit; the wrapper's own size does not.
TEST( WrappersDeathTest, needRoomForThemselvesBehindTheOffset ) {
   auto const pkt = packetWithMessage();
   U32 const last = 100 - sizeof( MvrpVlanVectorWrapper );
   EXPECT_TRUE( mvrpVlanVectorWrapperFactory( pkt, last ) );
   EXPECT_DEATH( mvrpVlanVectorWrapperFactory( pkt, last + 1 ),
                 "\\( offset_ \\+ sizeof\\( MvrpVlanVectorWrapper \\) \\) <= "
                 "pkt_->frontBytes\\(\\)" );
   EXPECT_DEATH( msrpMessageHeaderWrapperFactory( pkt, ~0u ), "MsrpMessageHeaderWrapper" );
}

} // namespace
} // namespace Mrp
