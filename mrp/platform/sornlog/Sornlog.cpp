#include "mrp/platform/sornlog/Sornlog.h"

#include <string_view>

namespace Sornlog {

namespace {

std::string argumentText( Argument const & argument ) {
   switch ( argument.code ) {
   case 'p': return argument.text;
   case 'b': return argument.number ? "true" : "false";
   default: return std::to_string( argument.number );
   }
}

} // namespace

std::string text( Site const & site, std::span< Argument const > arguments ) {
   std::string line;
   for ( char const c : std::string_view( site.message ) ) {
      if ( c == '%' && !arguments.empty() ) {
         line += argumentText( arguments.front() );
         arguments = arguments.subspan( 1 );
      } else {
         line += c;
      }
   }
   bool first = true;
   for ( auto const & argument : arguments ) {
      // Most messages end with a blank for what follows; the names of functions do not.
      line += !first ? ", " : line.ends_with( ')' ) ? " " : "";
      first = false;
      line += argumentText( argument );
   }
   return line;
}

} // namespace Sornlog
