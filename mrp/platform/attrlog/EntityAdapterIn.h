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
   if constexpr ( kindAt< place > == Kind::scalar ) {
      in.checked( !gone && !attribute.isKey, "a value for what has none" );
      if constexpr ( !attribute.isKey ) {
         auto const value = in.template get< typename T::Value >();
         if constexpr ( gathers ) {
            std::get< place >( told_.values ) = value;
         }
         apply( attribute.number, attribute.mutator, value );
      }
   } else {
      if constexpr ( kindAt< place > == Kind::queue ) {
         if ( attrId == attribute.metadataNumber ) {
            return apply( attribute.metadataNumber, attribute.metadataMutator,
                          in.template get< typename T::Metadata >() );
         }
         in.checked( attrId != -attribute.metadataNumber, "a span cannot be deleted" );
      }
      auto const key = in.template get< typename T::Key >();
      if ( gone ) {
         return doDelMember< place >( key );
      }
      if constexpr ( kindAt< place > == Kind::queue ) {
         apply( attribute.number, attribute.mutator, key, in.template get< U8 >() );
         doGrowSpan< place >( key );
      } else if constexpr ( kindAt< place > == Kind::map ) {
         auto const value = in.template get< typename T::Value >();
         doCountMember< place >( key );
         apply( attribute.number, attribute.mutator, key, value );
         if ( flowIn_ && flowIn_->attrId == attribute.number ) {
            std::get< place >( flowIn_->parts ).brought.insert( key );
         }
      } else {
         deserializeChild< place >( key, in );
      }
   }
}

// Puts a slot that has just been written into the span, if it is not there yet. That is the case
// for a 0: the entity ignores a byte that its slot has already, and slots outside the span read 0.
template < class E >
template < std::size_t place >
void EntityAdapter< E >::doGrowSpan( U8 slot ) {
   auto const & bytes = collection< place >();
   if ( isMember( bytes, slot ) ) {
      return;
   }
   bool const isBehind = bytes.position( bytes.count() ) == slot;
   ByteReader::checked( isBehind || ( slot + 1u ) % byteQueueSlots == bytes.head(),
                        "a byte away from its value" );
   constexpr auto attribute = std::get< place >( table.list );
   auto const [head, count] = bytes.metadata();
   apply( attribute.metadataNumber, attribute.metadataMutator,
          ByteQueueMetadata{ isBehind ? head : slot, static_cast< U8 >( count + 1 ) } );
}

template < class E >
template < std::size_t place, class Key >
void EntityAdapter< E >::deserializeChild( Key const & key, ByteReader & in ) {
   using T = TraitsAt< place >;
   constexpr auto attribute = std::get< place >( table.list );
   U64 const child = in.template get< U64 >();
   ByteReader orphan = input()->takeOrphan( child, T::Adapter::typeName() );
   in.checked( orphan.template get< Key >() == key, "a child under another key than its own" );
   orphan.expectEnd();
   doCountMember< place >( key );
   Handling const handling( *this, attribute.number );
   auto * const member = ( entity()->*attribute.make )( key );
   in.checked( member != nullptr, "a child that did not stay" );
   auto made = std::make_unique< typename T::Adapter >( *member );
   made->handleMounted( *input(), child );
   std::get< place >( kept_ ).adapters.insertOrAssign( key, std::move( made ) );
}

// Counts a member that is about to come, if the key is new.
template < class E >
template < std::size_t place, class Key >
void EntityAdapter< E >::doCountMember( Key const & key ) {
   if ( !isMember( collection< place >(), key ) ) {
      input()->membersInc( 1 );
   }
}

template < class E >
template < std::size_t place, class Key >
void EntityAdapter< E >::doDelMember( Key const & key ) {
   constexpr auto attribute = std::get< place >( table.list );
   if constexpr ( kindAt< place > != Kind::queue ) {
      auto const * const member = collection< place >().find( key );
      if ( !member ) {
         return;
      }
      if constexpr ( kindAt< place > == Kind::children ) {
         input()->membersDec( 1 + membersBelow( **member ) );
      } else {
         input()->membersDec( 1 );
         if ( flowIn_ ) {
            std::get< place >( flowIn_->parts ).brought.erase( key );
         }
      }
   }
   apply( attribute.number, attribute.remover, key );
}

template < class E >
void EntityAdapter< E >::handleAttrTransaction( U16 attrId, Marker marker ) {
   if ( marker == Marker::begin ) {
      ByteReader::checked( !flowIn_, "a collection within a collection" );
      flowIn_ = std::make_unique< FlowIn >();
      flowIn_->attrId = attrId;
      syncModeIs( SyncMode::synchronising );
   } else {
      ByteReader::checked( flowIn_ && flowIn_->attrId == attrId,
                           "a marker for what has not begun" );
   }
   forEachPlace( table, [&]( auto place ) {
      if ( std::get< place >( table.list ).number != attrId ) {
         return;
      }
      brought_ &= ~( 1u << place );
      if constexpr ( kindAt< place > == Kind::children ) {
         if ( marker == Marker::begin ) {
            std::get< place >( kept_ ).adapters.clear();
         }
      }
      if ( marker == Marker::end ) {
         handlingTransactionIs( attrId );
         doDelUnbrought< place >();
         handlingTransactionIs( 0 );
         brought_ |= kindAt< place > == Kind::scalar ? 0u : 1u << place;
      }
   } );
   if ( marker != Marker::begin ) {
      flowIn_ = nullptr;
      syncModeIs( SyncMode::direct );
   }
}

template < class E >
bool EntityAdapter< E >::isBrought() const {
   U32 collections = 0;
   forEachPlace( table, [&]( auto place ) {
      collections |= kindAt< place > == Kind::scalar ? 0u : 1u << place;
   } );
   return brought_ == collections;
}

// What the resync has not brought exists no more. For a queue the message of its span has done it.
template < class E >
template < std::size_t place >
void EntityAdapter< E >::doDelUnbrought() {
   constexpr Kind kind = kindAt< place >;
   if constexpr ( kind == Kind::map || kind == Kind::children ) {
      auto const isBrought = [&]( auto const & key ) {
         if constexpr ( kind == Kind::children ) {
            return std::get< place >( kept_ ).adapters.isMember( key );
         } else {
            return std::get< place >( flowIn_->parts ).brought.contains( key );
         }
      };
      for ( auto member = collection< place >().walk(); member; ++member ) {
         if ( auto const key = member.key(); !isBrought( key ) ) {
            doDelMember< place >( key );
         }
      }
   }
}

} // namespace Korv::NboAttrLog
