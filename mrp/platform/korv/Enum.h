// Enumerations with names. An enumeration whose values run from 0 lists its names once, in order,
// by specialising EnumNames; conversion from number and name and the text form come from that.
#pragma once

#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/Types.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace Korv {

// Specialise with `static constexpr char const * type = "MrpApplication"` and
// `static constexpr std::array names{ "InvalidApplication", ... }`.
template < class E >
struct EnumNames;

template < class E >
concept NamedEnum = std::is_enum_v< E > && requires {
   EnumNames< E >::names;
};

// The enumerator's name; a number outside the enumeration prints as that number.
template < NamedEnum E >
std::string stringValue( E value ) {
   auto const number = static_cast< std::size_t >( value );
   auto const & names = EnumNames< E >::names;
   return number < names.size() ? std::string( names[number] ) : std::to_string( number );
}

// The conversion named after the enumeration, from a number or a name:
// `inline constexpr Korv::EnumInstance< MrpApplication > MrpApplicationInstance;`
template < NamedEnum E >
struct EnumInstance {
   constexpr EnumInstance() = default;

   E operator()( U64 number ) const {
      if ( number >= EnumNames< E >::names.size() ) {
         throwRangeException( std::string( EnumNames< E >::type ) + ": no value " +
                              std::to_string( number ) );
      }
      return static_cast< E >( number );
   }
   E operator()( std::string_view name ) const {
      auto const & names = EnumNames< E >::names;
      for ( std::size_t number = 0; number < names.size(); ++number ) {
         if ( name == names[number] ) {
            return static_cast< E >( number );
         }
      }
      throwRangeException( std::string( EnumNames< E >::type ) + ": no name '" +
                           std::string( name ) + "'" );
   }
};

} // namespace Korv
