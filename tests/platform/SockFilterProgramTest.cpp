// What the program of an application lets pass is tested with the participants, tests/frame.
#include "mrp/platform/pelk/SockFilterProgram.h"

#include <gtest/gtest.h>

#include <vector>

namespace Pelk {
namespace {

TEST( SockFilterProgram, rejectsWhatItCannotRun ) {
   std::vector< U8 > const bytes( 60 );
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
