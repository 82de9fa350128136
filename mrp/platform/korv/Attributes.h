// One table of attributes per entity.
//
// An entity lists its attributes once, with number, name, kind, reader and mutators:
//
//    static constexpr auto attributes() {
//       return Korv::attributeTable(
//          "Mrp::MrpConfig", Korv::scalar( 258, "timersEnabled", &MrpConfig::timersEnabled,
//                                          &MrpConfig::timersEnabledIs ), ... );
//    }
//
// Copying an entity, its JSON form and the adapters of the mirror stream are generic code over
// that table; what differs by kind asks `kindOf`. Numbers are those of the mirror stream: 258 is
// the first that an entity adds to the generic ones.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <tuple>
#include <type_traits>

namespace Korv {

enum class AttributeKind : U8 { scalar, map, children, queue };

// Reader: value. Mutator: takes a value, or is null for an attribute that is fixed at
// construction (the entity's key).
template < class E, class T, class V >
struct ScalarAttribute {
   static constexpr AttributeKind kind = AttributeKind::scalar;

   U16 number;
   char const * name;
   T ( E::*reader )() const;
   void ( E::*mutator )( V );
   bool isKey; // no mutator
};

// A keyed collection of values. Reader: the collection.
template < class E, class C, class K, class V >
struct MapAttribute {
   static constexpr AttributeKind kind = AttributeKind::map;

   U16 number;
   char const * name;
   C const & ( E::*reader )() const;
   void ( E::*mutator )( K, V );
   void ( E::*remover )( K );
};

// A keyed collection of owned entities. `make` finds or makes the child.
template < class E, class C, class K, class Child >
struct ChildrenAttribute {
   static constexpr AttributeKind kind = AttributeKind::children;

   U16 number;
   char const * name;
   C const & ( E::*reader )() const;
   Child ( E::*make )( K );
   void ( E::*remover )( K );
};

// A queue of bytes by position, with (head, count) as its metadata under a number of its own.
template < class E, class Q, class M >
struct QueueAttribute {
   static constexpr AttributeKind kind = AttributeKind::queue;

   U16 metadataNumber;
   U16 number;
   char const * name;
   Q const & ( E::*reader )() const;
   void ( E::*metadataMutator )( M );
   void ( E::*mutator )( U32, U8 );
   void ( E::*remover )( U32 );
};

template < class E, class T, class V >
constexpr ScalarAttribute< E, T, V > scalar( U16 number, char const * name,
                                             T ( E::*reader )() const, void ( E::*mutator )( V ) ) {
   return { number, name, reader, mutator, false };
}
template < class E, class T >
constexpr ScalarAttribute< E, T, T > keyScalar( U16 number, char const * name,
                                                T ( E::*reader )() const ) {
   return { number, name, reader, nullptr, true };
}
template < class E, class C, class K, class V >
constexpr MapAttribute< E, C, K, V >
map( U16 number, char const * name, C const & ( E::*reader )() const, void ( E::*mutator )( K, V ),
     void ( E::*remover )( K ) ) {
   return { number, name, reader, mutator, remover };
}
template < class E, class C, class K, class Child >
constexpr ChildrenAttribute< E, C, K, Child >
children( U16 number, char const * name, C const & ( E::*reader )() const, Child ( E::*make )( K ),
          void ( E::*remover )( K ) ) {
   return { number, name, reader, make, remover };
}
template < class E, class Q, class M >
constexpr QueueAttribute< E, Q, M >
queue( U16 metadataNumber, U16 number, char const * name, Q const & ( E::*reader )() const,
       void ( E::*metadataMutator )( M ), void ( E::*mutator )( U32, U8 ),
       void ( E::*remover )( U32 ) ) {
   return { metadataNumber, number, name, reader, metadataMutator, mutator, remover };
}

// The kind of an attribute, from the type of whatever names it: `kindOf< decltype( attribute ) >`.
template < class Attribute >
inline constexpr AttributeKind kindOf = std::remove_cvref_t< Attribute >::kind;

template < class... A >
struct AttributeTable {
   char const * typeName;
   std::tuple< A... > list;

   template < class F >
   constexpr void forEach( F && f ) const {
      std::apply( [&]( auto const &... attribute ) { ( f( attribute ), ... ); }, list );
   }
};
template < class... A >
constexpr AttributeTable< A... > attributeTable( char const * typeName, A... attributes ) {
   return { typeName, { attributes... } };
}

// Calls f( name, value ) for each scalar attribute, in order.
template < class E, class F >
void forEachScalar( E const & entity, F && f ) {
   E::attributes().forEach( [&]( auto const & attribute ) {
      if constexpr ( kindOf< decltype( attribute ) > == AttributeKind::scalar ) {
         f( attribute.name, ( entity.*( attribute.reader ) )() );
      }
   } );
}

} // namespace Korv
