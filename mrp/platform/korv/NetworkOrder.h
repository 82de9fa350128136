// An unsigned integer as the wire has it: an array of bytes, most significant first, with
// alignment 1. Wire records are plain classes made of these; they can stand at any offset of a
// frame, and reading one converts to a host number.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <bit>
#include <compare>
#include <cstring>
#include <type_traits>

namespace Korv {

template < class T >
constexpr T byteSwapped( T value ) {
   if constexpr ( sizeof( T ) == 1 ) {
      return value;
   } else if constexpr ( sizeof( T ) == 2 ) {
      return __builtin_bswap16( value );
   } else if constexpr ( sizeof( T ) == 4 ) {
      return __builtin_bswap32( value );
   } else {
      return __builtin_bswap64( value );
   }
}

// Host to network and, since the two are one operation, back.
template < class T >
constexpr T networkOrdered( T value ) {
   return std::endian::native == std::endian::big ? value : byteSwapped( value );
}

template < class T >
class NetworkOrder {
   static_assert( std::is_unsigned_v< T > );

 public:
   using Host = T;

   NetworkOrder() = default;
   NetworkOrder( T host ) { // NOLINT(google-explicit-constructor): a number is a number
      T const wire = networkOrdered( host );
      std::memcpy( bytes_, &wire, sizeof( T ) );
   }
   operator T() const { return host(); } // NOLINT(google-explicit-constructor)
   T host() const {
      T wire;
      std::memcpy( &wire, bytes_, sizeof( T ) );
      return networkOrdered( wire );
   }
   bool operator==( NetworkOrder const & other ) const {
      return std::memcmp( bytes_, other.bytes_, sizeof( T ) ) == 0;
   }
   std::strong_ordering operator<=>( NetworkOrder const & other ) const {
      return host() <=> other.host();
   }

 private:
   U8 bytes_[sizeof( T )] = {};
};

static_assert( sizeof( NetworkOrder< U64 > ) == 8 && alignof( NetworkOrder< U64 > ) == 1 );

// A 16-bit field in the middle of a frame.
inline U16 networkU16At( void const * where ) {
   U16 wire;
   std::memcpy( &wire, where, sizeof wire );
   return networkOrdered( wire );
}
inline void networkU16IsAt( void * where, U16 host ) {
   U16 const wire = networkOrdered( host );
   std::memcpy( where, &wire, sizeof wire );
}

} // namespace Korv
