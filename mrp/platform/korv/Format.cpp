#include "mrp/platform/korv/Format.h"

#include <cstdarg>
#include <cstdio>

namespace Korv {

std::string format( char const * pattern, ... ) {
   va_list args;
   va_start( args, pattern );
   va_list again;
   va_copy( again, args );
   int const length = std::vsnprintf( nullptr, 0, pattern, args );
   va_end( args );
   std::string text( length > 0 ? static_cast< std::size_t >( length ) : 0, '\0' );
   std::vsnprintf( text.data(), text.size() + 1, pattern, again );
   va_end( again );
   return text;
}

} // namespace Korv
