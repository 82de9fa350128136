// Text values, compared by content.
#pragma once

#include "mrp/platform/korv/Record.h"

#include <compare>
#include <ostream>
#include <string>

namespace Korv {

class String8 {
 public:
   String8() = default;
   String8( std::string text )
      : text_( std::move( text ) ) {}              // NOLINT(google-explicit-constructor)
   String8( char const * text ) : text_( text ) {} // NOLINT(google-explicit-constructor)

   std::string const & stringValue() const { return text_; }
   char const * charPtr() const { return text_.c_str(); }
   std::size_t bytes() const { return text_.size(); }
   bool empty() const { return text_.empty(); }

   auto operator<=>( String8 const & ) const = default;
   bool operator==( String8 const & ) const = default;

   U32 hash() const { return hashOf( *this ); }
   void hashInto( OneAtATime & hash ) const { hash.add( text_.data(), text_.size() ); }
   U64 spread() const { return std::hash< std::string >{}( text_ ); }

   void textWrite( std::string & out ) const { out += text_; }

 private:
   std::string text_;
};

using Name = String8;

inline std::ostream & operator<<( std::ostream & out, String8 const & text ) {
   return out << text.stringValue();
}

} // namespace Korv
