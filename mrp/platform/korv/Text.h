// Text forms of values and their exact inverse.
//
// Numbers print in decimal, truth as true and false, enumerations as their enumerator's name, a
// record of several fields as "Value('Type', ** {'field': form, ...})" and a record of one field
// as that field alone. Other classes take part by two members: `textWrite( out ) const` and the
// static `textRead( in )`.
#pragma once

#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/korv/Record.h"
#include "mrp/platform/korv/Types.h"

#include <limits>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace Korv {

// What is still to be read of a text. Each reading operation consumes what it took or throws a
// RangeException.
class TextReader {
 public:
   explicit TextReader( std::string_view text ) : rest_( text ) {}

   void expect( std::string_view words );
   U64 number( U64 max );
   // Up to the end of a record's field or of the text. A comma or a brace alone does not end it:
   // interfaces may have such names.
   std::string_view word();
   void expectEnd() const;

 private:
   std::string_view rest_;
};

template < class T >
struct IsNetworkOrder : std::false_type {};
template < class T >
struct IsNetworkOrder< NetworkOrder< T > > : std::true_type {};

template < class T >
void textWrite( std::string & out, T const & value );
template < class T >
T textRead( TextReader & in );

// A field of a record, and ahead of it the words that lead up to it. A failure names the field.
template < class T >
T textReadField( TextReader & in, char const * field, std::string_view words = {} ) {
   try {
      in.expect( words );
      return textRead< T >( in );
   } catch ( RangeException const & failure ) {
      throwRangeException( std::string( failure.what() ) + ", in field '" + field + "'" );
   }
}

template < class T >
void textWrite( std::string & out, T const & value ) {
   if constexpr ( std::is_same_v< T, bool > ) {
      out += value ? "true" : "false";
   } else if constexpr ( std::is_integral_v< T > ) {
      out += std::to_string( value );
   } else if constexpr ( NamedEnum< T > ) {
      out += stringValue( value );
   } else if constexpr ( IsNetworkOrder< T >::value ) {
      out += std::to_string( value.host() );
   } else if constexpr ( requires { value.textWrite( out ); } ) {
      value.textWrite( out );
   } else {
      constexpr auto const & table = T::record;
      if constexpr ( table.size == 1 ) {
         textWrite( out, value.*( std::get< 0 >( table.fields ).member ) );
      } else {
         out += "Value('";
         out += table.typeName;
         out += "', ** {";
         bool first = true;
         table.forEach( [&]( auto const & field ) {
            out += first ? "'" : ", '";
            first = false;
            out += field.name;
            out += "': ";
            textWrite( out, value.*( field.member ) );
         } );
         out += "})";
      }
   }
}

template < class T >
T textRead( TextReader & in ) {
   if constexpr ( std::is_same_v< T, bool > ) {
      auto const word = in.word();
      if ( word != "true" && word != "false" ) {
         throwRangeException( "neither true nor false: '" + std::string( word ) + "'" );
      }
      return word == "true";
   } else if constexpr ( std::is_integral_v< T > ) {
      return static_cast< T >( in.number( std::numeric_limits< T >::max() ) );
   } else if constexpr ( NamedEnum< T > ) {
      return EnumInstance< T >{}( in.word() );
   } else if constexpr ( IsNetworkOrder< T >::value ) {
      using Host = typename T::Host;
      return static_cast< Host >( in.number( std::numeric_limits< Host >::max() ) );
   } else if constexpr ( requires { T::textRead( in ); } ) {
      return T::textRead( in );
   } else {
      constexpr auto const & table = T::record;
      T value;
      if constexpr ( table.size == 1 ) {
         auto const & field = std::get< 0 >( table.fields );
         using F = std::remove_cvref_t< decltype( value.*( field.member ) ) >;
         value.*( field.member ) = textReadField< F >( in, field.name );
      } else {
         in.expect( std::string( "Value('" ) + table.typeName + "', ** {" );
         bool first = true;
         table.forEach( [&]( auto const & field ) {
            std::string const words = std::string( first ? "'" : ", '" ) + field.name + "': ";
            first = false;
            using F = std::remove_cvref_t< decltype( value.*( field.member ) ) >;
            value.*( field.member ) = textReadField< F >( in, field.name, words );
         } );
         in.expect( "})" );
      }
      return value;
   }
}

template < class T >
std::string toText( T const & value ) {
   std::string out;
   textWrite( out, value );
   return out;
}

// The whole of the text must be the form of one T.
template < class T >
T fromText( std::string_view text ) {
   TextReader in( text );
   T value = textRead< T >( in );
   in.expectEnd();
   return value;
}

} // namespace Korv
