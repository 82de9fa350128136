#include "mrp/platform/pelk/Pkt.h"

#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace Pelk {
namespace {

constexpr std::size_t frameBytes = 60;

// Over a received frame of bytes 1, 2, 3 ...: data at the front of the buffer, no room before it.
Korv::Ptr< Pkt > countingPkt() {
   std::vector< U8 > frame( frameBytes );
   std::iota( frame.begin(), frame.end(), U8{ 1 } );
   return receivePool().newPkt( frame.data(), frame.size() );
}

TEST( Pkt, readingBeyondTheDataWrapsItsLengthAndGoesOnInTheBuffer ) {
   auto const pkt = countingPkt();
   pkt->delSharedHeadData( frameBytes + 3 );
   EXPECT_EQ( pkt->bytes(), static_cast< std::size_t >( -3 ) );
   EXPECT_EQ( pkt->frontBytes(), static_cast< std::size_t >( -3 ) );
   pkt->delSharedHeadData( 65'535 );
   EXPECT_EQ( *pkt->frontData(), 0 );
   auto const & buffer = *pkt->sharedBuffer();
   pkt->delSharedHeadData( buffer.size() - buffer.room() ); // the end itself counts as within
   EXPECT_DEATH( pkt->delSharedHeadData( 1 ), "ptrWithinRegion\\( data_, buffer_, size_ \\)" );
}

TEST( Pkt, newHeadWithoutRoomMovesTheDataToTheEndOfALargerBuffer ) {
   auto const pkt = countingPkt();
   std::size_t const size = pkt->sharedBuffer()->size();
   pkt->delSharedHeadData( 2 );
   pkt->newSharedHeadData( 2 ); // just the room there is
   EXPECT_EQ( pkt->sharedBuffer()->size(), size );
   EXPECT_EQ( *pkt->frontData(), 1 );

   pkt->newSharedHeadData( 5 );
   auto const & buffer = *pkt->sharedBuffer();
   EXPECT_EQ( buffer.size(), size + 5 );
   EXPECT_EQ( buffer.room() + buffer.dataBytes(), buffer.size() );
   std::vector< U8 > expected( frameBytes + 5 );
   std::iota( expected.begin() + 5, expected.end(), U8{ 1 } );
   EXPECT_EQ( std::vector< U8 >( pkt->frontData(), pkt->frontData() + pkt->bytes() ), expected );

   pkt->delSharedTailData( 40 );
   EXPECT_EQ( pkt->frontBytes(), 25u );
   EXPECT_EQ( pkt->frontData()[24], 20 );
}

TEST( PktManager, limitsThePacketsThatLiveAndMakesThemOfZeros ) {
   PktManager manager;
   manager.maxPktsIs( 2 );
   auto const second = manager.newPkt();
   for ( int round = 0; round < 2; ++round ) { // with what the one before has left
      auto const pkt = manager.newPkt();
      EXPECT_FALSE( manager.newPkt() );
      pkt->newSharedHeadData( 1515 );
      EXPECT_EQ( pkt->sharedBuffer()->size(), 1515u );
      EXPECT_EQ( std::accumulate( pkt->frontData(), pkt->frontData() + 1515, 0 ), 0 );
      std::fill( pkt->frontData(), pkt->frontData() + 1515, U8{ 0xff } );
      pkt->delSharedTailData( 1000 );
      pkt->newSharedHeadData( 9000 ); // beyond its first buffer
   }
}

} // namespace
} // namespace Pelk
