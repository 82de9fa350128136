// One table of fields per record.
//
// A value type names its fields once,
//
//    static constexpr auto record = Korv::record(
//       "Mrp::MrpLeaveAllKey", Korv::field( "intfId", &MrpLeaveAllKey::intfId_ ),
//       Korv::field( "attributeType", &MrpLeaveAllKey::attributeType_ ) );
//
// and its text form with the inverse (Text.h), its hash and the spread that hashed collections use
// are folds over that table. Where a record has no padding, `static_assert( T::record.bytes() ==
// sizeof( T ) )` makes a dropped field a compile error.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace Korv {

template < class R, class T >
struct Field {
   char const * name;
   T R::*member;
};

template < class R, class... T >
struct RecordTable {
   static constexpr std::size_t size = sizeof...( T );

   char const * typeName;
   std::tuple< Field< R, T >... > fields;

   static constexpr std::size_t bytes() { return ( sizeof( T ) + ... + 0 ); }
   template < class F >
   constexpr void forEach( F && f ) const {
      std::apply( [&]( auto const &... field ) { ( f( field ), ... ); }, fields );
   }
};

template < class R, class T >
constexpr Field< R, T > field( char const * name, T R::*member ) {
   return { name, member };
}
template < class R, class... T >
constexpr RecordTable< R, T... > record( char const * typeName, Field< R, T >... fields ) {
   return { typeName, { fields... } };
}

template < class T >
concept HasRecord = requires {
   T::record.typeName;
};

// The published 32-bit hash of keys: h = h + b, h = h * 1025, h = h xor (h >> 6) for each byte;
// at the end h = h * 9, h = h xor (h >> 11), h = h * 32769.
class OneAtATime {
 public:
   void add( U8 byte ) {
      h_ += byte;
      h_ *= 1025;
      h_ ^= h_ >> 6;
   }
   void add( void const * bytes, std::size_t count ) {
      auto const * p = static_cast< U8 const * >( bytes );
      for ( std::size_t i = 0; i < count; ++i ) {
         add( p[i] );
      }
   }
   U32 value() const {
      U32 h = h_ * 9;
      h ^= h >> 11;
      return h * 32769;
   }

 private:
   U32 h_ = 0;
};

// Integers enter from their least significant byte up; classes say themselves by `hashInto`.
template < class T >
void hashAdd( OneAtATime & hash, T const & value ) {
   if constexpr ( std::is_integral_v< T > ) {
      for ( std::size_t i = 0; i < sizeof( T ); ++i ) {
         hash.add( static_cast< U8 >( value >> ( 8 * i ) ) );
      }
   } else if constexpr ( HasRecord< T > ) {
      T::record.forEach( [&]( auto const & f ) { hashAdd( hash, value.*( f.member ) ); } );
   } else {
      value.hashInto( hash );
   }
}

template < class T >
U32 hashOf( T const & value ) {
   OneAtATime hash;
   hashAdd( hash, value );
   return hash.value();
}

// How the collections here scatter keys: one multiplication a field, where the published hash
// takes three steps a byte.
inline U64 spreadStep( U64 seed, U64 value ) {
   U64 const mixed = ( seed ^ value ) * 0x9E3779B97F4A7C15u;
   return mixed ^ ( mixed >> 32 );
}
template < class T >
U64 spread( T const & value, U64 seed = 0 ) {
   if constexpr ( std::is_integral_v< T > || std::is_enum_v< T > ) {
      return spreadStep( seed, static_cast< U64 >( value ) );
   } else if constexpr ( HasRecord< T > ) {
      T::record.forEach( [&]( auto const & f ) { seed = spread( value.*( f.member ), seed ); } );
      return seed;
   } else {
      return spreadStep( seed, value.spread() );
   }
}

} // namespace Korv
