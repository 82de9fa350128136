// What the mirror stream keeps for an attribute, by its kind. Traits< Attribute > names
//
//    Key, Value   what its messages carry
//    Kept         what an adapter has of it for all its life
//    FlowOut      what of it has still to be sent, while anything has
//    FlowIn       what of it has been received of a collection that is under way
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/OrderedMap.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <type_traits>

namespace Korv::NboAttrLog {

using Kind = AttributeKind;

// What of a collection has still to be sent.
template < class Key, class Walk >
struct CollectionFlowOut {
   bool korvHasSynced = true; // false: the whole of it, first
   // The whole has been begun, and goes on here.
   std::optional< Walk > bookmark;
   void bookmarkIs( std::optional< Walk > const & at ) { bookmark = at; }
   // The keys that have changed meanwhile. True for a member that the observer may have: once it
   // has gone, that is to be told.
   std::map< Key, bool > korvIsDirty;
   void korvIsDirtyDel( Key const & key ) { korvIsDirty.erase( key ); }
};

template < class Attribute >
struct Traits;

template < class E, class T, class V >
struct Traits< ScalarAttribute< E, T, V > > {
   using Value = std::remove_cvref_t< T >;
   struct Kept {};
   struct FlowIn {};
   struct FlowOut {
      bool dirty = false;
   };
};

template < class E, class C, class K, class V >
struct Traits< MapAttribute< E, C, K, V > > {
   using Key = std::remove_cvref_t< K >;
   using Value = std::remove_cvref_t< V >;
   struct Kept {};
   struct FlowIn {
      std::set< Key > brought;
   };
   using FlowOut = CollectionFlowOut< Key, typename C::Walk >;
};

template < class E, class C, class K, class Child >
struct Traits< ChildrenAttribute< E, C, K, Child > > {
   using Key = std::remove_cvref_t< K >;
   using Member = std::remove_pointer_t< Child >;
   using Adapter = typename Member::KorvNboAttrLogSa;
   struct Kept {
      OrderedMap< Key, std::unique_ptr< Adapter > > adapters;
   };
   struct FlowIn {};
   using FlowOut = CollectionFlowOut< Key, typename C::Walk >;
};

template < class E, class Q, class M >
struct Traits< QueueAttribute< E, Q, M > > {
   using Key = U8; // the slot
   using Metadata = std::remove_cvref_t< M >;
   struct Kept {};
   struct FlowIn {};
   // A walk over the slots of the span.
   struct Walk {
      Q const * queue;
      U32 i = 0;
      explicit operator bool() const { return i < queue->count(); }
      U8 key() const { return static_cast< U8 >( queue->position( i ) ); }
      void operator++() { ++i; }
   };
   // Which slots there are is told ahead of what is in them.
   struct FlowOut : CollectionFlowOut< Key, Walk > {
      bool dirty = false; // the span
   };
};

// Whether the number is the attribute's. A queue has two: one of its span, one of its bytes.
template < class Attribute >
constexpr bool isNumber( Attribute const & attribute, U16 number ) {
   if constexpr ( Attribute::kind == Kind::queue ) {
      return attribute.number == number || attribute.metadataNumber == number;
   } else {
      return attribute.number == number;
   }
}

// The number by which a flow, which goes through the attributes in order, comes to this one.
template < class Attribute >
constexpr U16 firstNumber( Attribute const & attribute ) {
   if constexpr ( Attribute::kind == Kind::queue ) {
      return attribute.metadataNumber;
   } else {
      return attribute.number;
   }
}

// Calls f( std::integral_constant ) for each place of a table.
template < class Table, class F >
constexpr void forEachPlace( Table const &, F && f ) {
   constexpr std::size_t count = std::tuple_size_v< decltype( Table::list ) >;
   [&]< std::size_t... place >( std::index_sequence< place... > ) {
      ( f( std::integral_constant< std::size_t, place >() ), ... );
   }
   ( std::make_index_sequence< count >() );
}

// How many members the collections of an entity have, and those of its children, all the way down.
template < class E >
std::size_t membersBelow( E const & entity ) {
   std::size_t members = 0;
   E::attributes().forEach( [&]( auto const & attribute ) {
      constexpr Kind kind = kindOf< decltype( attribute ) >;
      if constexpr ( kind == Kind::map || kind == Kind::children ) {
         auto const & collection = ( entity.*attribute.reader )();
         members += collection.size();
         if constexpr ( kind == Kind::children ) {
            for ( auto child = collection.walk(); child; ++child ) {
               members += membersBelow( *child.value() );
            }
         }
      }
   } );
   return members;
}

template < class Table, template < class > class Part >
struct PartsOf;
template < template < class > class Part, class... A >
struct PartsOf< AttributeTable< A... >, Part > {
   using type = std::tuple< Part< A >... >;
};
template < class A >
using ValueOf = typename Traits< A >::Value;
template < class A >
using KeptOf = typename Traits< A >::Kept;
template < class A >
using FlowOutOf = typename Traits< A >::FlowOut;
template < class A >
using FlowInOf = typename Traits< A >::FlowIn;

} // namespace Korv::NboAttrLog
