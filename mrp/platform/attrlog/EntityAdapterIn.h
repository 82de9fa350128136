// Receiving. Included by EntityAdapter.h.
#pragma once

#include "mrp/platform/attrlog/EntityAdapter.h"
#include "mrp/platform/korv/RangeException.h"

namespace Korv::NboAttrLog {

// Watchers hear of what arrives, from within; the change is not sent back.
template < class E >
template < class Mutator, class... Value >
void EntityAdapter< E >::apply( U16 attrId, Mutator mutator, Value const &... value ) {
   Handling const handling( *this, attrId );
   ( entity()->*mutator )( value... );
}

// Numbers that the entity does not have are those of a later version.
template < class E >
void EntityAdapter< E >::handleAttrDeserialization( S16 attrId, ByteReader & in ) {
   auto const number = static_cast< U16 >( attrId < 0 ? -attrId : attrId );
   forEachPlace( table, [&]( auto place ) {
      if ( isNumber( std::get< place >( table.list ), number ) ) {
         deserialize< place >( attrId, in );
         in.expectEnd();
      }
   } );
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::deserialize( S16 attrId, ByteReader & in ) {
   using T = TraitsAt< place >;
   constexpr auto attribute = std::get< place >( table.list );
   bool const gone = attrId < 0;
   if constexpr ( T::kind == Kind::scalar ) {
      in.checked( !gone && !attribute.isKey, "a value for what has none" );
      if constexpr ( !attribute.isKey ) {
         apply( attribute.number, attribute.mutator, in.template get< typename T::Value >() );
      }
   } else if constexpr ( T::kind == Kind::map ) {
      auto const key = in.template get< typename T::Key >();
      if ( gone ) {
         return apply( attribute.number, attribute.remover, key );
      }
      in.checked( collection< place >().size() < Input::maxMembers, "a collection too large" );
      apply( attribute.number, attribute.mutator, key, in.template get< typename T::Value >() );
      if ( flowIn_ && flowIn_->attrId == attribute.number ) {
         std::get< place >( flowIn_->parts ).brought.insert( key );
      }
   } else if constexpr ( T::kind == Kind::queue ) {
      if ( attrId == attribute.metadataNumber ) {
         return apply( attribute.metadataNumber, attribute.metadataMutator,
                       in.template get< typename T::Metadata >() );
      }
      in.checked( attrId != -attribute.metadataNumber, "a span cannot be deleted" );
      auto const slot = in.template get< typename T::Key >();
      if ( gone ) {
         return apply( attribute.number, attribute.remover, slot );
      }
      apply( attribute.number, attribute.mutator, slot, in.template get< U8 >() );
   } else {
      deserializeChild< place >( gone, in );
   }
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::deserializeChild( bool gone, ByteReader & in ) {
   using T = TraitsAt< place >;
   constexpr auto attribute = std::get< place >( table.list );
   auto const key = in.template get< typename T::Key >();
   auto & adapters = std::get< place >( kept_ ).adapters;
   if ( gone ) {
      apply( attribute.number, attribute.remover, key );
      adapters.erase( key );
      return;
   }
   U64 const child = in.template get< U64 >();
   ByteReader orphan = input()->takeOrphan( child, T::Adapter::typeName() );
   in.checked( orphan.template get< typename T::Key >() == key,
               "a child under another key than its own" );
   in.checked( collection< place >().size() < Input::maxMembers, "a collection too large" );
   Handling const handling( *this, attribute.number );
   auto * const member = ( entity()->*attribute.make )( key );
   in.checked( member != nullptr, "a child that did not stay" );
   auto made = std::make_unique< typename T::Adapter >( *member );
   made->handleMounted( *input(), child );
   adapters[key] = std::move( made );
}

template < class E >
void EntityAdapter< E >::handleAttrTransaction( U16 attrId, Marker marker ) {
   if ( marker == Marker::begin ) {
      ByteReader::checked( !flowIn_, "a collection within a collection" );
      flowIn_ = std::make_unique< FlowIn >();
      flowIn_->attrId = attrId;
   } else {
      ByteReader::checked( flowIn_ && flowIn_->attrId == attrId,
                           "a marker for what has not begun" );
   }
   forEachPlace( table, [&]( auto place ) {
      constexpr auto attribute = std::get< place >( table.list );
      if constexpr ( TraitsAt< place >::kind != Kind::scalar ) {
         if ( attribute.number == attrId && marker == Marker::begin ) {
            synced_ &= ~( 1u << place );
         }
         if ( attribute.number == attrId && marker == Marker::end ) {
            handleBrought< place >();
            synced_ |= 1u << place;
         } else if constexpr ( TraitsAt< place >::kind == Kind::children ) {
            if ( attribute.number == attrId && marker == Marker::begin ) {
               std::get< place >( kept_ ).adapters.clear();
            }
         }
      }
   } );
   if ( marker != Marker::begin ) {
      flowIn_ = nullptr;
   }
}

template < class E >
bool EntityAdapter< E >::isBrought() const {
   bool all = true;
   forEachPlace( table, [&]( auto place ) {
      if constexpr ( TraitsAt< place >::kind != Kind::scalar ) {
         all = all && synced< place >();
      }
   } );
   return all;
}

// What the resync has not brought exists no more.
template < class E >
template < std::size_t place >
void EntityAdapter< E >::handleBrought() {
   using T = TraitsAt< place >;
   if constexpr ( T::kind != Kind::queue ) { // there the span has said it
      constexpr auto attribute = std::get< place >( table.list );
      auto const & kept = std::get< place >( kept_ );
      auto const & flow = std::get< place >( flowIn_->parts );
      for ( auto member = collection< place >().walk(); member; ++member ) {
         auto const key = member.key();
         bool brought;
         if constexpr ( T::kind == Kind::children ) {
            brought = kept.adapters.contains( key );
         } else {
            brought = flow.brought.contains( key );
         }
         if ( !brought ) {
            apply( attribute.number, attribute.remover, key );
         }
      }
      static_cast< void >( kept );
      static_cast< void >( flow );
   }
}

} // namespace Korv::NboAttrLog
