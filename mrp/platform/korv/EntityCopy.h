// The entity copier: the attributes of one entity onto another of the same class, through the
// destination's mutators, so that its watchers hear what changed and nothing else.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/Ptr.h"

#include <string>

namespace Cli::Session {

class EntityCopy : public Korv::PtrInterface {
 public:
   // The name is empty, which stands for all attributes; nothing else is offered. The key stays as
   // it is.
   template < class E >
   void doCopyEntityAttrs( E & destination, E const & source, std::string const & /* name */ ) {
      E::attributes().forEach( [&]( auto const & attribute ) {
         constexpr auto kind = Korv::kindOf< decltype( attribute ) >;
         static_assert( kind == Korv::AttributeKind::scalar || kind == Korv::AttributeKind::queue,
                        "a leaf entity is copied, not a tree" );
         auto const & value = ( source.*( attribute.reader ) )();
         if constexpr ( kind == Korv::AttributeKind::queue ) {
            ( destination.*( attribute.metadataMutator ) )( value.metadata() );
            for ( Korv::U32 i = 0; i < value.count(); ++i ) {
               auto const position = value.position( i );
               ( destination.*( attribute.mutator ) )( position, value.at( position ) );
            }
         } else if ( !attribute.isKey ) {
            ( destination.*( attribute.mutator ) )( value );
         }
      } );
   }
};

} // namespace Cli::Session
