// Values as bytes of the mirror stream, and back. Numbers go in network order, so that neither
// byte order nor word size of either end matters:
//
//    bool               1 byte, 0 or 1
//    U8 ... U64         1, 2, 4 or 8 bytes, most significant first
//    an enumeration     its number in 4 bytes
//    Seconds            8 bytes, an IEEE 754 double
//    text, IntfId       length in 2 bytes, then the characters
//    (head, count)      1 byte each
//    a record           its fields, in their order
//
// Reading trusts nothing: what is too short or means nothing is a StreamError.
#pragma once

#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/korv/Record.h"
#include "mrp/platform/korv/String8.h"
#include "mrp/platform/pelk/IntfId.h"

#include <bit>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_set>

namespace Korv::NboAttrLog {

// A stream that is broken, hostile, or of another version. Whoever reads it ends it.
class StreamError : public std::runtime_error {
 public:
   using runtime_error::runtime_error;
};

// The names of interfaces that streams have brought, one after the other. The process keeps each of
// them for good, so their number is limited.
class NameGuard {
 public:
   static constexpr std::size_t maxNames = 16'384;
   static constexpr std::size_t maxBytes = 255;
   // Throws a StreamError for one that is too many or too long.
   Pelk::IntfId intfId( std::string_view name );

 private:
   std::unordered_set< std::string > names_;
};

// Writes values into memory that the caller has made ready.
class ByteWriter {
 public:
   explicit ByteWriter( U8 * to ) : to_( to ) {}

   // The number of bytes that put() writes for the value.
   template < class T >
   static std::size_t size( T const & value ) {
      if constexpr ( std::is_same_v< T, bool > ) {
         return 1;
      } else if constexpr ( std::is_enum_v< T > ) {
         return sizeof( U32 );
      } else if constexpr ( std::is_integral_v< T > || std::is_same_v< T, Seconds > ) {
         return sizeof( T );
      } else if constexpr ( std::is_same_v< T, ByteQueueMetadata > ) {
         return 2;
      } else if constexpr ( HasRecord< T > ) {
         std::size_t all = 0;
         T::record.forEach( [&]( auto const & field ) { all += size( value.*( field.member ) ); } );
         return all;
      } else {
         return sizeof( U16 ) + text( value ).size();
      }
   }
   template < class T >
   void put( T const & value ) {
      if constexpr ( std::is_same_v< T, bool > ) {
         put( static_cast< U8 >( value ? 1 : 0 ) );
      } else if constexpr ( std::is_enum_v< T > ) {
         put( static_cast< U32 >( value ) );
      } else if constexpr ( std::is_integral_v< T > ) {
         auto const wire = networkOrdered( static_cast< std::make_unsigned_t< T > >( value ) );
         append( &wire, sizeof wire );
      } else if constexpr ( std::is_same_v< T, Seconds > ) {
         put( std::bit_cast< U64 >( value ) );
      } else if constexpr ( std::is_same_v< T, ByteQueueMetadata > ) {
         put( value.head );
         put( value.count );
      } else if constexpr ( HasRecord< T > ) {
         T::record.forEach( [&]( auto const & field ) { put( value.*( field.member ) ); } );
      } else {
         std::string_view const characters = text( value );
         put( static_cast< U16 >( characters.size() ) );
         append( characters.data(), characters.size() );
      }
   }
   void append( void const * bytes, std::size_t count ) {
      std::memcpy( to_, bytes, count );
      to_ += count;
   }

 private:
   // Cut off at 65,535 characters, which no name comes near.
   template < class T >
   static std::string_view text( T const & value ) {
      std::string_view characters;
      if constexpr ( std::is_same_v< T, std::string_view > ) {
         characters = value;
      } else {
         characters = value.stringValue();
      }
      return characters.substr( 0, 0xffff );
   }

   U8 * to_;
};

// Takes values off the front of some bytes.
class ByteReader {
 public:
   ByteReader( std::span< U8 const > bytes, NameGuard & names )
      : bytes_( bytes ), names_( names ) {}

   template < class T >
   T get() {
      if constexpr ( std::is_same_v< T, bool > ) {
         U8 const byte = get< U8 >();
         return checked( byte <= 1, "a bool that is neither 0 nor 1" ), byte == 1;
      } else if constexpr ( NamedEnum< T > ) {
         U32 const number = get< U32 >();
         checked( number < EnumNames< T >::names.size(), "a number outside its enumeration" );
         return static_cast< T >( number );
      } else if constexpr ( std::is_integral_v< T > ) {
         std::make_unsigned_t< T > wire;
         auto const part = take( sizeof wire );
         std::memcpy( &wire, part.data(), sizeof wire );
         return static_cast< T >( networkOrdered( wire ) );
      } else if constexpr ( std::is_same_v< T, Seconds > ) {
         return std::bit_cast< Seconds >( get< U64 >() );
      } else if constexpr ( std::is_same_v< T, ByteQueueMetadata > ) {
         U8 const head = get< U8 >();
         U8 const count = get< U8 >();
         checked( head < byteQueueSlots, "a head outside the queue" );
         return { head, count };
      } else if constexpr ( HasRecord< T > ) {
         T value;
         T::record.forEach( [&]( auto const & field ) {
            using Part = std::remove_reference_t< decltype( value.*( field.member ) ) >;
            value.*( field.member ) = get< Part >();
         } );
         return value;
      } else if constexpr ( std::is_same_v< T, Pelk::IntfId > ) {
         return names_.intfId( getText() );
      } else {
         return T( std::string( getText() ) );
      }
   }
   std::string_view getText();
   std::span< U8 const > take( std::size_t count ) {
      checked( count <= bytes_.size(), "a value that is cut off" );
      auto const part = bytes_.first( count );
      bytes_ = bytes_.subspan( count );
      return part;
   }
   ByteReader section( std::size_t count ) { return { take( count ), names_ }; }
   void expect( U8 byte, char const * what ) { checked( get< U8 >() == byte, what ); }
   void expectEnd() const { checked( bytes_.empty(), "bytes behind the end of a message" ); }

   // Throws a StreamError of these words unless the condition holds.
   static void checked( bool holds, char const * otherwise ) {
      if ( !holds ) {
         throw StreamError( otherwise );
      }
   }

 private:
   std::span< U8 const > bytes_;
   NameGuard & names_;
};

} // namespace Korv::NboAttrLog
