// A fuzzer's input, taken from the front. Bytes that are missing count as 0.
#pragma once

#include "tests/support/Values.h"

#include <algorithm>
#include <span>

namespace Fuzz {

using TestSupport::Bytes;
using TestSupport::U16;
using TestSupport::U8;

class Input {
 public:
   explicit Input( std::span< U8 const > bytes ) : bytes_( bytes ) {}

   bool empty() const { return bytes_.empty(); }
   U8 byte() { return empty() ? U8{ 0 } : bytes( 1 )[0]; }
   U16 two() {
      unsigned const high = byte();
      return static_cast< U16 >( high << 8 | byte() );
   }
   Bytes bytes( std::size_t count ) {
      auto const front = bytes_.first( std::min( count, bytes_.size() ) );
      bytes_ = bytes_.subspan( front.size() );
      return Bytes( front.begin(), front.end() );
   }

 private:
   std::span< U8 const > bytes_;
};

} // namespace Fuzz
