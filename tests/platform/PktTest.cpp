// Packets and where their memory comes from, and the filter that runs over them in software.
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/pelk/ReceivePool.h"
#include "mrp/platform/pelk/SockFilterProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Pelk {
namespace {

using Bytes = std::vector< U8 >;

Bytes dataOf( Pkt const & pkt ) {
   return Bytes( pkt.frontData(), pkt.frontData() + pkt.frontBytes() );
}

// Any jump of the parser ends in them.
TEST( ReceivePool, holdsZerosBehindEachFrameWhateverWentBefore ) {
   ReceivePool pool;
   // Shorter, longer, beyond the usual size and back.
   for ( std::size_t const size : { 1500u, 60u, 14u, 700u, 699u, 9000u, 64u, 70'000u, 15u } ) {
      SCOPED_TRACE( size );
      Bytes const frame( size, 0xff );
      auto const pkt = pool.newPkt( frame.data(), size );
      auto const & buffer = *pkt->sharedBuffer();
      EXPECT_EQ( dataOf( *pkt ), frame );
      ASSERT_GE( buffer.size() - size, 65'535u + 8'192u );
      EXPECT_EQ( std::count( pkt->frontData() + size, buffer.buffer() + buffer.size(), 0 ),
                 buffer.size() - size );
   }
   EXPECT_FALSE( pool.newPkt( Bytes( 13 ).data(), 13 ) ); // a runt
}

TEST( Pkt, readingBeyondTheDataWrapsItsLengthAndGoesOnInTheBuffer ) {
   auto const pkt = receivePool().newPkt( Bytes( 60 ).data(), 60 );
   pkt->delSharedHeadData( 63 );
   EXPECT_EQ( pkt->bytes(), static_cast< std::size_t >( -3 ) );
   EXPECT_EQ( pkt->frontBytes(), static_cast< std::size_t >( -3 ) );
   pkt->delSharedHeadData( 65'535 );
   EXPECT_EQ( *pkt->frontData(), 0 );
   auto const & buffer = *pkt->sharedBuffer();
   pkt->delSharedHeadData( buffer.size() - buffer.room() ); // the end itself counts as within
   EXPECT_DEATH( pkt->delSharedHeadData( 1 ), "ptrWithinRegion\\( data_, buffer_, size_ \\)" );
}

TEST( PktManager, limitsThePacketsThatLiveAndMakesThemOfZeros ) {
   PktManager manager;
   manager.maxPktsIs( 2 );
   auto const second = manager.newPkt();
   for ( int round = 0; round < 2; ++round ) { // with what the one before has left
      auto const pkt = manager.newPkt();
      EXPECT_FALSE( manager.newPkt() );
      pkt->newSharedHeadData( 1515 );
      EXPECT_EQ( dataOf( *pkt ), Bytes( 1515 ) );
      std::fill_n( pkt->frontData(), 1515, U8{ 0xff } );
      pkt->delSharedTailData( 1000 );
      pkt->newSharedHeadData( 9000 ); // beyond its first buffer
      Bytes grown( 9000 );
      grown.resize( 9515, 0xff );
      EXPECT_EQ( dataOf( *pkt ), grown );
   }
}

// What the program of an application lets pass is tested with the participants, tests/frame.
TEST( SockFilterProgram, rejectsAFrameThatEndsBeforeWhatIsLookedAt ) {
   Bytes const bytes( 60 );
   auto acceptsLoadAt = [&]( U32 place ) {
      SockFilterInstruction const steps[] = { { 0x20, 0, 0, place }, { 0x06, 0, 0, 1 } };
      return SockFilterProgram( 2, steps ).accepts( bytes.data(), bytes.size() );
   };
   EXPECT_TRUE( acceptsLoadAt( 56 ) );
   EXPECT_FALSE( acceptsLoadAt( 57 ) );
   EXPECT_FALSE( acceptsLoadAt( 0xffffffff ) ); // no wrap-around
}

} // namespace
} // namespace Pelk
