// The entity copier: the attributes of one entity onto another of the same class, through the
// destination's mutators, so that its watchers hear what changed and nothing else.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/Ptr.h"

#include <string>

namespace Cli::Session {

class EntityCopy : public Korv::PtrInterface {
 public:
   // An empty name and no filter mean all attributes; nothing else is offered. Keys stay as they
   // are; children are not descended into.
   template < class E >
   void doCopyEntityAttrs( E & destination, E const & source, std::string const & /* name */ ) {
      E::attributes().forEach( [&]( auto const & attribute ) {
         if constexpr ( requires { attribute.metadataMutator; } ) {
            auto const & bytes = ( source.*( attribute.reader ) )();
            ( destination.*( attribute.metadataMutator ) )( bytes.metadata() );
            for ( Korv::U32 i = 0; i < bytes.count(); ++i ) {
               auto const position = bytes.position( i );
               ( destination.*( attribute.mutator ) )( position, bytes.at( position ) );
            }
         } else if constexpr ( requires { attribute.make; } ) {
            static_assert(
               !requires { attribute.make; }, "a leaf entity is copied, not a tree" );
         } else if constexpr ( requires { attribute.remover; } ) {
            static_assert(
               !requires { attribute.remover; }, "no copied entity has a map" );
         } else if ( attribute.mutator ) {
            ( destination.*( attribute.mutator ) )( ( source.*( attribute.reader ) )() );
         }
      } );
   }
};

} // namespace Cli::Session
