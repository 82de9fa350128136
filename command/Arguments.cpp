#include "command/Arguments.h"

#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>

namespace Command {

namespace {

// The whole of the text as one number.
template < class T, class... Format >
std::optional< T > numberIn( std::string_view text, Format... format ) {
   T number{};
   auto const [end, error] =
      std::from_chars( text.data(), text.data() + text.size(), number, format... );
   bool const isNumber = error == std::errc() && end == text.data() + text.size();
   return isNumber ? std::optional( number ) : std::nullopt;
}

} // namespace

Mrp::MrpApplication applicationArgument( std::string const & text ) {
   std::string lower;
   for ( char const c : text ) {
      lower += static_cast< char >( std::tolower( static_cast< unsigned char >( c ) ) );
   }
   if ( lower == "mvrp" ) {
      return Mrp::MVRP;
   }
   if ( lower == "msrp" ) {
      return Mrp::MSRP;
   }
   throw CommandError( "'" + text + "' is no application: mvrp or msrp" );
}

Pelk::EthAddr addressArgument( std::string const & text ) {
   try {
      return Pelk::EthAddr( text );
   } catch ( Korv::RangeException const & ) {
      throw CommandError( "'" + text + "' is no MAC address, such as 01:80:c2:00:00:21" );
   }
}

Korv::U16 ethertypeArgument( std::string const & text ) {
   bool const isHexadecimal = text.starts_with( "0x" ) || text.starts_with( "0X" );
   auto const number = isHexadecimal
                          ? numberIn< Korv::U16 >( std::string_view( text ).substr( 2 ), 16 )
                          : numberIn< Korv::U16 >( text, 10 );
   if ( !number ) {
      throw CommandError( "'" + text + "' is no EtherType: 0 to 65535, or 0x0 to 0xffff" );
   }
   return *number;
}

Korv::U64 numberArgument( std::string const & text, std::string const & what, Korv::U64 lowest,
                          Korv::U64 highest ) {
   auto const number = numberIn< Korv::U64 >( text, 10 );
   if ( !number || *number < lowest || *number > highest ) {
      throw CommandError( "'" + text + "' is no " + what + ": " + std::to_string( lowest ) +
                          " to " + std::to_string( highest ) );
   }
   return *number;
}

Nanoseconds durationArgument( std::string const & text ) {
   constexpr double longest = 1e9;
   auto const seconds = numberIn< double >( text, std::chars_format::fixed );
   if ( !seconds || !( *seconds >= 0 && *seconds <= longest ) ) {
      throw CommandError( "'" + text + "' is no time in seconds: 0 to 1000000000, such as 0.5" );
   }
   return std::llround( *seconds * nanosecondsPerSecond );
}

NamedCapture captureArgument( std::string const & text ) {
   NamedCapture capture;
   auto const equals = text.find( '=' );
   bool const isNamed = equals != std::string::npos && text.find( '/' ) > equals;
   if ( isNamed ) {
      capture.interface = text.substr( 0, equals );
   }
   capture.path = isNamed ? text.substr( equals + 1 ) : text;
   if ( capture.interface.empty() || capture.path.empty() ) {
      throw CommandError( "'" + text + "' is neither NAME=FILE nor FILE" );
   }
   return capture;
}

} // namespace Command
