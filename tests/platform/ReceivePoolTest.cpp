#include "mrp/platform/pelk/ReceivePool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Pelk {
namespace {

Korv::Ptr< Pkt > received( ReceivePool & pool, std::size_t size ) {
   std::vector< U8 > const frame( size, 0xff );
   return pool.newPkt( frame.data(), frame.size() );
}

// The frame at the front of its buffer, and behind it zeros enough for any jump.
void expectSafe( Pkt const & pkt, std::size_t size ) {
   auto const & buffer = *pkt.sharedBuffer();
   EXPECT_EQ( buffer.room(), 0u );
   ASSERT_EQ( pkt.bytes(), size );
   EXPECT_TRUE( std::all_of( pkt.frontData(), pkt.frontData() + size,
                             []( U8 byte ) { return byte == 0xff; } ) );
   ASSERT_GE( buffer.size() - size, 65'535u + 8'192u );
   EXPECT_TRUE( std::all_of( pkt.frontData() + size, buffer.buffer() + buffer.size(),
                             []( U8 byte ) { return byte == 0; } ) );
}

TEST( ReceivePool, holdsZerosBehindEachFrameWhateverWentBefore ) {
   ReceivePool pool;
   // Shorter, longer, beyond the usual size and back.
   for ( std::size_t const size : { 1500u, 60u, 14u, 700u, 699u, 9000u, 64u, 70'000u, 15u } ) {
      SCOPED_TRACE( size );
      expectSafe( *received( pool, size ), size );
   }
   EXPECT_FALSE( received( pool, 13 ) ); // a runt
}

} // namespace
} // namespace Pelk
