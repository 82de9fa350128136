// The attribute of the parse context, as the ways that run for each value of a frame ask for it:
// the inline half of DatabaseAccess.cpp. Included by bodies of MrpSm only.
#pragma once

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"

namespace Mrp {

inline MrpIntfTypeApplicant * MrpSm::contextType() const {
   U64 const state = typeState();
   if ( found_.typeAt != state ) {
      found_.type = searchType( parseContext_->intfId(), parseContext_->attributeType() );
      found_.typeAt = state;
   }
   return found_.type;
}

// So many attributes ahead of a frame's walk they are prefetched: a switch holds more of them than
// its caches do, and without this each would be waited for. Less than a row of the ordered map.
inline constexpr std::size_t attributesAhead = 32;

// While nothing is pending the tree is all there is, and the neighbour of the attribute found last
// the most likely: that is the way of a refresh.
inline MrpAttrDatabase * MrpSm::contextAttributeInTree() const {
   U64 const state = attributeState();
   if ( found_.attributeAt != state ) {
      MrpIntfTypeApplicant const * const type = contextType();
      found_.attribute = type ? type->mrpAttribute( parseContext_->attributeKey() ) : nullptr;
      found_.attributeAt = found_.attribute ? state : Found::never;
      if ( found_.attribute ) {
         if ( auto const * const soon = type->mrpAttribute().ahead( attributesAhead ) ) {
            ( *soon )->prefetch();
         }
      }
   }
   return found_.attribute;
}

// A VLAN has no value beyond its key.
template < class Kind >
bool MrpSm::rxSameAs( MrpAttrDatabase const & stored ) const {
   typename Kind::Value const & received = ( mrpLib_->*Kind::rx )();
   if constexpr ( std::is_same_v< Kind, VlanKind > ) {
      return Kind::key( received ) == parseContext_->attributeKey();
   } else {
      return stored.attributeValue().sameAs( &received, sizeof received );
   }
}

} // namespace Mrp
