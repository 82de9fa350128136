// The always-on ring buffer of a process: one ring per level, numbers written raw.
//
// A site is a constant: its message is registered with a file once, under the site's address, and
// each pass writes its arguments alone. Without a file a site costs one test of a pointer.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <array>
#include <concepts>
#include <span>
#include <string>
#include <type_traits>

namespace Sornlog {

// A '%' in the message stands for an argument within it; arguments left over follow at its end.
// `arguments` has one letter each: i a 32-bit number, c a byte, p a string, b a boolean.
struct Site {
   Korv::U8 level;
   char const * message;
   char const * arguments;
};

template < std::same_as< Site >... S >
constexpr std::array< Site const *, sizeof...( S ) > siteTable( S const &... site ) {
   return { &site... };
}

struct Argument {
   char code;
   Korv::S32 number;  // i, c and b
   char const * text; // p; good during the write only
};

class File {
 public:
   virtual ~File() = default;
   virtual void write( Site const & site, std::span< Argument const > arguments ) = 0;
};

// The file of the process, or null. Whoever sets it owns it and unsets it before its end. The
// visibility keeps it one for the process where a library and its user hide their symbols from each
// other.
[[gnu::visibility( "default" )]] inline constinit File * defaultFile_ = nullptr;
inline File * file() { return defaultFile_; }
inline void fileIs( File * file ) { defaultFile_ = file; }

// The line that a person reads.
std::string text( Site const & site, std::span< Argument const > arguments );

// Strings, and values whose stringValue() refers to one that they keep, go as p.
template < class A >
Argument argumentOf( A const & value ) {
   if constexpr ( std::same_as< A, bool > ) {
      return { 'b', value, nullptr };
   } else if constexpr ( sizeof( A ) == 1 && std::is_integral_v< A > ) {
      return { 'c', value, nullptr };
   } else if constexpr ( std::is_integral_v< A > || std::is_enum_v< A > ) {
      static_assert( sizeof( A ) <= 4 );
      return { 'i', static_cast< Korv::S32 >( value ), nullptr };
   } else if constexpr ( std::same_as< A, std::string > ) {
      return { 'p', 0, value.c_str() };
   } else if constexpr ( std::convertible_to< A const &, char const * > ) {
      return { 'p', 0, value };
   } else {
      static_assert( std::is_reference_v< decltype( value.stringValue() ) > );
      return { 'p', 0, value.stringValue().c_str() };
   }
}

template < class... A >
[[gnu::cold, gnu::noinline]] void write( Site const & site, A const &... args ) {
   std::array< Argument, sizeof...( A ) > const list{ argumentOf( args )... };
   file()->write( site, list );
}

template < class... A >
inline void log( Site const & site, A const &... args ) {
   if ( file() ) [[unlikely]] {
      write( site, args... );
   }
}

} // namespace Sornlog
