#include "mrp/platform/pelk/SockFilterProgram.h"

#include <gtest/gtest.h>

#include <vector>

namespace Pelk {
namespace {

using Frame = std::vector< U8 >;

// To 01:80:c2:00:00:21, of type 0x88f5, untagged or behind one tag.
constexpr SockFilterInstruction mvrp[] = {
   { 0x20, 0, 0, 2 },      { 0x15, 0, 8, 0xc2000021 }, { 0x28, 0, 0, 0 },
   { 0x15, 0, 6, 0x0180 }, { 0x28, 0, 0, 12 },         { 0x15, 3, 0, 0x88f5 },
   { 0x15, 0, 3, 0x8100 }, { 0x28, 0, 0, 16 },         { 0x15, 0, 1, 0x88f5 },
   { 0x06, 0, 0, 0xffff }, { 0x06, 0, 0, 0 },
};
SockFilterProgram const program( 11, mvrp );

Frame frame( std::initializer_list< U8 > fromByte12, U8 lastOfAddress = 0x21,
             U8 firstOfAddress = 0x01 ) {
   Frame bytes{ firstOfAddress, 0x80, 0xc2, 0, 0, lastOfAddress, 2, 0, 0, 0, 0, 1 };
   bytes.insert( bytes.end(), fromByte12 );
   return bytes;
}

bool passes( Frame const & bytes ) { return program.accepts( bytes.data(), bytes.size() ); }

TEST( SockFilterProgram, passesTheAddressWithTheTypeUntaggedOrBehindOneTag ) {
   EXPECT_TRUE( passes( frame( { 0x88, 0xf5 } ) ) );
   EXPECT_TRUE( passes( frame( { 0x81, 0x00, 0x00, 0x07, 0x88, 0xf5, 0, 0 } ) ) );

   EXPECT_FALSE( passes( frame( { 0x22, 0xea } ) ) );
   EXPECT_FALSE( passes( frame( { 0x81, 0x00, 0x00, 0x07, 0x22, 0xea, 0, 0 } ) ) );
   EXPECT_FALSE( passes( frame( { 0x81, 0x00, 0, 7, 0x81, 0x00, 0, 7, 0x88, 0xf5 } ) ) );
   EXPECT_FALSE( passes( frame( { 0x88, 0xf5 }, 0x0e ) ) );
   EXPECT_FALSE( passes( frame( { 0x88, 0xf5 }, 0x21, 0x03 ) ) );
}

TEST( SockFilterProgram, rejectsAFrameThatEndsBeforeALoad ) {
   for ( std::size_t size = 0; size < 14; ++size ) {
      auto bytes = frame( { 0x88, 0xf5 } );
      bytes.resize( size );
      EXPECT_FALSE( passes( bytes ) ) << size;
   }
   EXPECT_FALSE( passes( frame( { 0x81, 0x00, 0x00, 0x07, 0x88 } ) ) );
}

TEST( SockFilterProgram, rejectsWhatItCannotRun ) {
   Frame const bytes( 60 );
   auto accepts = [&]( std::vector< SockFilterInstruction > const & steps ) {
      return SockFilterProgram( static_cast< U16 >( steps.size() ), steps.data() )
         .accepts( bytes.data(), bytes.size() );
   };
   SockFilterInstruction const accept{ 0x06, 0, 0, 1 };
   EXPECT_TRUE( accepts( {} ) ); // no program holds nothing back
   EXPECT_TRUE( accepts( { accept } ) );
   EXPECT_FALSE( accepts( { { 0x30, 0, 0, 0 }, accept } ) );          // a code of no use here
   EXPECT_FALSE( accepts( { { 0x28, 0, 0, 0 } } ) );                  // runs out
   EXPECT_FALSE( accepts( { { 0x15, 9, 9, 0 }, accept } ) );          // jumps out
   EXPECT_FALSE( accepts( { { 0x28, 0, 0, 0xffffffff }, accept } ) ); // no wrap-around
   EXPECT_TRUE( accepts( { { 0x20, 0, 0, 56 }, accept } ) );          // the last four bytes
   EXPECT_FALSE( accepts( { { 0x20, 0, 0, 57 }, accept } ) );
}

} // namespace
} // namespace Pelk
