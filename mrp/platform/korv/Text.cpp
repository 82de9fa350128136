#include "mrp/platform/korv/Text.h"

#include <algorithm>

namespace Korv {

void TextReader::expect( std::string_view words ) {
   if ( !rest_.starts_with( words ) ) {
      throwRangeException( "expected \"" + std::string( words ) + "\" at \"" +
                           std::string( rest_.substr( 0, 40 ) ) + "\"" );
   }
   rest_.remove_prefix( words.size() );
}

U64 TextReader::number( U64 max ) {
   std::size_t digits = 0;
   U64 value = 0;
   while ( digits < rest_.size() && rest_[digits] >= '0' && rest_[digits] <= '9' ) {
      U64 const digit = static_cast< U64 >( rest_[digits] - '0' );
      if ( value > ( max - digit ) / 10 ) {
         throwRangeException( "number above " + std::to_string( max ) );
      }
      value = value * 10 + digit;
      ++digits;
   }
   // One text per value: the inverse is exact, so leading zeros are no number's form.
   if ( digits == 0 || ( digits > 1 && rest_[0] == '0' ) ) {
      throwRangeException( "not a number: \"" + std::string( rest_.substr( 0, 40 ) ) + "\"" );
   }
   rest_.remove_prefix( digits );
   return value;
}

std::string_view TextReader::word() {
   auto const word = rest_.substr( 0, std::min( rest_.find( ", '" ), rest_.find( "})" ) ) );
   rest_.remove_prefix( word.size() );
   return word;
}

void TextReader::expectEnd() const {
   if ( !rest_.empty() ) {
      throwRangeException( "unexpected \"" + std::string( rest_.substr( 0, 40 ) ) +
                           "\" behind the value" );
   }
}

} // namespace Korv
