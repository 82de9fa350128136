// The insertOrAssign of both maps.
#pragma once

#include <utility>

namespace Korv {

// True if the key was not there before.
template < class Map, class K, class V >
bool insertOrAssign( Map & map, K const & key, V && value ) {
   bool made = false;
   V & held = map.findOrMake( key, [&] {
      made = true;
      return std::move( value );
   } );
   if ( !made ) {
      held = std::move( value );
   }
   return made;
}

} // namespace Korv
