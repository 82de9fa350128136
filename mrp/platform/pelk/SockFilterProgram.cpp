#include "mrp/platform/pelk/SockFilterProgram.h"

namespace Pelk {

namespace {

enum Code : U16 {
   loadWord = 0x20,
   loadHalf = 0x28,
   jumpIfEqual = 0x15,
   ret = 0x06,
};

} // namespace

bool SockFilterProgram::accepts( U8 const * bytes, std::size_t size ) const {
   if ( length_ == 0 ) {
      return true;
   }
   U32 accumulator = 0;
   for ( std::size_t at = 0; at < length_; ++at ) {
      SockFilterInstruction const & step = address_[at];
      switch ( step.code ) {
      case loadWord:
      case loadHalf: {
         std::size_t const width = step.code == loadWord ? 4 : 2;
         if ( size < width || size - width < step.k ) {
            return false;
         }
         accumulator = 0;
         for ( std::size_t i = 0; i < width; ++i ) {
            accumulator = accumulator << 8 | bytes[step.k + i];
         }
         break;
      }
      case jumpIfEqual: at += accumulator == step.k ? step.jt : step.jf; break;
      case ret: return step.k != 0;
      default: return false;
      }
   }
   return false;
}

} // namespace Pelk
