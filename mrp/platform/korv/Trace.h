// Text traces: `trace( 8, "Port role for ", intfId, " changed" )`.
//
// A trace has a level from 0 to 9 and a handle; a line is composed only when the handle has that
// level on, and carries the source name and line. Off, a site costs one test.
#pragma once

#include "mrp/platform/korv/SourceLocation.h"
#include "mrp/platform/korv/Types.h"

#include <ios>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>

namespace Korv {

class TraceHelper {
 public:
   explicit constexpr TraceHelper( char const * name ) : name_( name ) {}

   char const * name() const { return name_; }
   bool isOn( U32 level ) const { return ( levels_ >> level & 1u ) != 0; }
   // One bit a level: levelsIs( 1u << 4 | 1u << 8 ).
   U32 levels() const { return levels_; }
   void levelsIs( U32 levels ) { levels_ = levels; }

 private:
   char const * name_;
   U32 levels_ = 0;
};

// Where trace lines go; standard error unless set.
using TraceSink = void ( * )( TraceHelper const & handle, U32 level, SourceLocation where,
                              std::string const & text );
void traceSinkIs( TraceSink sink );
void traceLine( TraceHelper const & handle, U32 level, SourceLocation where,
                std::string const & text );

// A level, with the place that names it.
struct TraceLevel {
   // NOLINTNEXTLINE(google-explicit-constructor): a trace is written `trace( 8, ... )`
   constexpr TraceLevel( U32 number, SourceLocation where = SourceLocation::current() )
      : level( number ), at( where ) {}
   U32 level;
   SourceLocation at;
};

// Numbers that print in hexadecimal, and bytes that print as numbers.
struct Hex {
   U64 number;
};
inline std::ostream & operator<<( std::ostream & out, Hex hex ) {
   return out << std::hex << hex.number << std::dec;
}

template < class T >
void tracePart( std::ostream & out, T const & part ) {
   if constexpr ( std::is_same_v< T, U8 > ) {
      out << static_cast< U32 >( part );
   } else {
      out << part;
   }
}

// How a part reaches the composing: by value where that is one register, so that a site whose level
// is off need not even put it into memory.
template < class Part >
using TracePass = std::conditional_t<
   std::is_array_v< Part >, char const *,
   std::conditional_t< std::is_trivially_copyable_v< Part > && sizeof( Part ) <= 8, Part,
                       Part const & > >;

template < class... Part >
[[gnu::cold, gnu::noinline]] void traceCompose( TraceHelper const & handle, U32 level,
                                                char const * file, U32 line, Part... part ) {
   std::ostringstream out;
   // Else a time would lose its fractions within a day.
   out.precision( std::numeric_limits< Seconds >::digits10 );
   ( tracePart( out, part ), ... );
   traceLine( handle, level, SourceLocation{ file, line }, out.str() );
}

} // namespace Korv
