// How a fuzzer tells that something does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace Fuzz {

// Aborts unless it holds, with the words and the input that they are about.
inline void check( bool holds, char const * what, std::string_view input = {} ) {
   if ( !holds ) {
      std::fprintf( stderr, "does not hold: %s: \"%.*s\"\n", what,
                    static_cast< int >( input.size() ), input.data() );
      std::abort();
   }
}

} // namespace Fuzz
