// Names an interface. Eight bytes that copy and compare as a number: the place of the name in one
// table of the process, which takes names in the order in which they are first mentioned and never
// forgets one. The empty name has place 0, so an empty IntfId is all zero.
//
// The order of IntfIds is the order of first mention: the same in each run that hears of the same
// interfaces in the same order, whatever they are called.
#pragma once

#include "mrp/platform/korv/Record.h"
#include "mrp/platform/korv/Text.h"
#include "mrp/platform/korv/Types.h"

#include <compare>
#include <ostream>
#include <string>
#include <string_view>

namespace Pelk {

class IntfId {
 public:
   constexpr IntfId() = default;
   explicit IntfId( std::string_view name );

   // The reference is good for the life of the process.
   std::string const & stringValue() const;
   bool empty() const { return index_ == 0; }

   auto operator<=>( IntfId const & ) const = default;

   Korv::U32 hash() const { return Korv::hashOf( *this ); }
   void hashInto( Korv::OneAtATime & hash ) const { hash.add( &index_, sizeof index_ ); }
   Korv::U64 spread() const { return index_; }

   void textWrite( std::string & out ) const { out += stringValue(); }
   static IntfId textRead( Korv::TextReader & in ) { return IntfId( in.word() ); }

 private:
   Korv::U64 index_ = 0;
};

static_assert( sizeof( IntfId ) == 8 );

inline std::ostream & operator<<( std::ostream & out, IntfId const & intfId ) {
   return out << intfId.stringValue();
}

} // namespace Pelk
