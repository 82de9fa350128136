// A value of a script together with the place where it stands in the file, such as
// `steps[3].frame`: every complaint about it names that place.
#pragma once

#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/Types.h"
#include "mrp/platform/pelk/EthAddr.h"

#include <nlohmann/json_fwd.hpp>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Command {

// Shares the document that it is a part of. Each reader throws CommandError, with the place, for a
// value that is not of its kind.
//
// Numbers may be written as text, in decimal or with 0x: not all readers and writers of JSON keep
// 64 bits.
class ScriptNode {
 public:
   using Json = nlohmann::ordered_json;

   // The whole of a document; its own place has no name. Text that is no JSON, lists and objects
   // within each other without end, and an object with one key twice are complained about here.
   static ScriptNode parse( std::string_view text );

   std::string const & place() const { return place_; }
   [[noreturn]] void fail( std::string const & what ) const;
   // "a list is needed, not 7"
   [[noreturn]] void failNeeds( std::string const & kind ) const;

   bool isNull() const;
   bool isText() const;
   bool isObject() const;
   bool isTruth() const;

   // Of an object.
   void checkKeys( std::initializer_list< std::string_view > known ) const;
   ScriptNode at( std::string_view key ) const; // which must be there
   std::optional< ScriptNode > find( std::string_view key ) const;
   std::vector< std::pair< std::string, ScriptNode > > members() const;

   // Of a list.
   std::vector< ScriptNode > elements() const;

   std::string text() const;
   bool truth() const;
   double number( double min, double max ) const;
   std::vector< Korv::U8 > bytes() const; // in hexadecimal; blanks are free
   Pelk::EthAddr address() const;

   template < std::integral T >
   T whole( T min = std::numeric_limits< T >::min(),
            T max = std::numeric_limits< T >::max() ) const {
      return static_cast< T >(
         wholeWithin( static_cast< std::int64_t >( min ), static_cast< Korv::U64 >( max ) ) );
   }

   // An enumerator by its name, or any number up to `max`.
   template < Korv::NamedEnum E, std::integral T >
   T nameOrNumber( T max ) const {
      auto const & names = Korv::EnumNames< E >::names;
      if ( !isName() ) {
         return whole< T >( 0, max );
      }
      auto const found = std::find( names.begin(), names.end(), text() );
      if ( found == names.end() ) {
         failNeeds( std::string( "one of " ) + names.front() + " to " + names.back() );
      }
      return static_cast< T >( found - names.begin() );
   }
   template < Korv::NamedEnum E >
   E enumerator() const {
      return static_cast< E >(
         nameOrNumber< E, Korv::U32 >( Korv::EnumNames< E >::names.size() - 1 ) );
   }

 private:
   ScriptNode( std::shared_ptr< Json const > document, Json const & json, std::string place );

   bool isName() const; // text that no number starts with
   // A negative number as its 64 bits.
   Korv::U64 wholeWithin( std::int64_t min, Korv::U64 max ) const;
   ScriptNode member( std::string const & key, Json const & json ) const;

   std::shared_ptr< Json const > document_;
   Json const * json_;
   std::string place_;
};

} // namespace Command
