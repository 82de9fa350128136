// The place in the source that names it: a default argument `= SourceLocation::current()` gives
// the caller's. (clang 14 has no std::source_location.)
#pragma once

#include "mrp/platform/korv/Types.h"

namespace Korv {

struct SourceLocation {
   char const * file;
   U32 line;

   static constexpr SourceLocation current( char const * file = __builtin_FILE(),
                                            U32 line = __builtin_LINE() ) {
      return { file, line };
   }
};

} // namespace Korv
