// A classic socket filter: the table that the kernel runs over each frame of a packet socket, and
// the same run in software for frames that never see a kernel.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>

namespace Pelk {

using Korv::U16;
using Korv::U32;
using Korv::U8;

// As the Linux socket filter format has it; a jump counts from the next instruction.
struct SockFilterInstruction {
   U16 code;
   U8 jt;
   U8 jf;
   U32 k;
};
static_assert( sizeof( SockFilterInstruction ) == 8 );

// Length and address of a program. The table is the maker's and outlives all who hold this; its
// operands may be filled in later.
class SockFilterProgram {
 public:
   SockFilterProgram() = default; // of no instructions: every frame passes
   SockFilterProgram( U16 length, SockFilterInstruction const * address )
      : address_( address ), length_( length ) {}

   U16 length() const { return length_; }
   SockFilterInstruction const * address() const { return address_; }

   // Whether the program passes the frame. Loads are at absolute offsets, and one beyond the frame
   // rejects it; so do a program that runs out and a code that is none of the four used here.
   bool accepts( U8 const * bytes, std::size_t size ) const;

 private:
   SockFilterInstruction const * address_ = nullptr;
   U16 length_ = 0;
};

} // namespace Pelk
