// Broken invariants. In release builds too, an assertion prints its text and aborts: a participant
// that goes on with a broken invariant would tell its neighbours untruths.
#pragma once

#include "mrp/platform/korv/SourceLocation.h"

namespace Korv {

[[noreturn]] void assertionFailed( char const * text, SourceLocation where );

inline void assertThat( bool condition, char const * text,
                        SourceLocation where = SourceLocation::current() ) {
   if ( !condition ) [[unlikely]] {
      assertionFailed( text, where );
   }
}

// What runs before the abort: it gets the assertion's text. A handler that ends the process in its
// own way (a script runner that still wants to print its result) need not return.
using AssertionHandler = void ( * )( char const * text );
void assertionHandlerIs( AssertionHandler handler );

} // namespace Korv
