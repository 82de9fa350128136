#include "mrp/platform/pelk/EthAddr.h"

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/korv/RangeException.h"

#include <algorithm>

namespace Pelk {

namespace {

[[noreturn]] void notAnAddress( std::string_view text ) {
   Korv::throwRangeException( "not an Ethernet address: \"" + std::string( text.substr( 0, 40 ) ) +
                              "\"" );
}

// The value of a hexadecimal digit, or 16.
unsigned digitValue( char c ) {
   if ( c >= '0' && c <= '9' ) return static_cast< unsigned >( c - '0' );
   if ( c >= 'a' && c <= 'f' ) return static_cast< unsigned >( c - 'a' ) + 10;
   if ( c >= 'A' && c <= 'F' ) return static_cast< unsigned >( c - 'A' ) + 10;
   return 16;
}

} // namespace

EthAddr::EthAddr( std::span< Korv::U8 const, size > bytes ) {
   std::copy( bytes.begin(), bytes.end(), bytes_ );
}

EthAddr::EthAddr( std::string_view text ) {
   if ( text.size() != 3 * size - 1 ) {
      notAnAddress( text );
   }
   for ( std::size_t i = 0; i < size; ++i ) {
      unsigned const high = digitValue( text[3 * i] );
      unsigned const low = digitValue( text[3 * i + 1] );
      bool const separated = i + 1 == size || text[3 * i + 2] == ':';
      if ( high > 15 || low > 15 || !separated ) {
         notAnAddress( text );
      }
      bytes_[i] = static_cast< Korv::U8 >( high * 16 + low );
   }
}

Korv::U64 EthAddr::number() const {
   Korv::U64 number = 0;
   for ( Korv::U8 const byte : bytes_ ) {
      number = number << 8 | byte;
   }
   return number;
}

EthAddr EthAddr::fromNumber( Korv::U64 number ) {
   EthAddr addr;
   for ( std::size_t i = size; i-- > 0; number >>= 8 ) {
      addr.bytes_[i] = static_cast< Korv::U8 >( number );
   }
   return addr;
}

std::string EthAddr::stringValue() const {
   return Korv::format( "%02x:%02x:%02x:%02x:%02x:%02x", bytes_[0], bytes_[1], bytes_[2], bytes_[3],
                        bytes_[4], bytes_[5] );
}

EthAddr EthAddr::textRead( Korv::TextReader & in ) {
   auto const word = in.word();
   EthAddr const addr( word );
   if ( addr.stringValue() != word ) {
      notAnAddress( word );
   }
   return addr;
}

} // namespace Pelk
