// What all of namespace Mrp takes from the platform: the scalar names, and one way to print any
// value. An enumeration prints as its enumerator's name, a record as Korv/Text.h tells.
#pragma once

#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/Text.h"
#include "mrp/platform/korv/Types.h"

#include <ostream>
#include <string>

namespace Mrp {

using Korv::U16;
using Korv::U32;
using Korv::U64;
using Korv::U8;

using Korv::stringValue;

template < class T >
concept TextValue = Korv::HasRecord< T > || requires( T const & value, std::string & out ) {
   value.textWrite( out );
};

template < TextValue T >
std::string stringValue( T const & value ) {
   return Korv::toText( value );
}

template < class T >
concept Printable = Korv::NamedEnum< T > || TextValue< T >;

template < Printable T >
std::ostream & operator<<( std::ostream & out, T const & value ) {
   return out << stringValue( value );
}

} // namespace Mrp
