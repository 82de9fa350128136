// What the operations on keyed collections of owned objects have in common. Such a collection is a
// map from the key to Ptr< T >; who owns it gives it operations of its name: `leaveSm( key )`
// reads, `leaveSmIs` finds or makes, `newLeaveSm` does so without announcing it, `leaveSmDel` and
// `leaveSmDelAll` take out.
#pragma once

#include "mrp/platform/korv/Ptr.h"

#include <type_traits>
#include <utility>

namespace Korv {

// The object under the key, or null.
template < class Map, class K >
auto * memberAt( Map const & members, K const & key ) {
   auto const * const found = members.find( key );
   return found ? found->ptr() : nullptr;
}

// The object under the key, made of the arguments if there is none yet.
template < class Map, class K, class... A >
auto * memberIs( Map & members, K const & key, A &&... args ) {
   using Member = std::remove_reference_t< decltype( **members.find( key ) ) >;
   return members
      .findOrMake( key, [&] { return newValidPtr< Member >( std::forward< A >( args )... ); } )
      .ptr();
}

// One by one: in its end an object may come back to the collection.
template < class Map >
void membersDelAll( Map & members ) {
   for ( auto member = members.walk(); member; ++member ) {
      members.erase( member.key() );
   }
}

} // namespace Korv
