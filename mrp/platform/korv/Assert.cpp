#include "mrp/platform/korv/Assert.h"

#include <cstdio>
#include <cstdlib>

namespace Korv {

namespace {
AssertionHandler handler_ = nullptr;
}

void assertionHandlerIs( AssertionHandler handler ) { handler_ = handler; }

void assertionFailed( char const * text, SourceLocation where ) {
   if ( handler_ ) {
      handler_( text );
   }
   std::fprintf( stderr, "%s:%u: assertion failed: %s\n", where.file, where.line, text );
   std::abort();
}

} // namespace Korv
