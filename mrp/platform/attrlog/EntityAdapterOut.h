// Sending. Included by EntityAdapter.h.
#pragma once

#include "mrp/platform/attrlog/EntityAdapter.h"

namespace Korv::NboAttrLog {

// Nothing is pending for the attribute that a message now would overtake. A scalar's last value is
// all that counts.
template < class E >
template < std::size_t place >
bool EntityAdapter< E >::settled() {
   if constexpr ( TraitsAt< place >::kind == Kind::scalar ) {
      return true;
   } else {
      if ( !flowOut() || !synced< place >() ) {
         return synced< place >();
      }
      auto const & marks = std::get< place >( pending().marks );
      if constexpr ( TraitsAt< place >::kind == Kind::queue ) {
         return marks.dirty.empty() && !marks.metadataDirty;
      }
      return marks.dirty.empty();
   }
}

template < class E >
template < U16 number >
void EntityAdapter< E >::handleAttr() {
   constexpr std::size_t place = placeOf( number );
   static_assert( place < std::tuple_size_v< decltype( Table::list ) > );
   constexpr bool metadata = TraitsAt< place >::kind == Kind::queue;
   Way const way = wayOut( number, std::get< place >( table.list ).name, settled< place >() );
   if ( way == Way::write ) {
      guarded( [&] {
         if constexpr ( metadata ) {
            serializeMetadata< place >();
         } else {
            serialize< place >();
         }
      } );
   } else if ( way == Way::mark ) {
      guarded( [&] {
         flowOutIs( number );
         auto & marks = std::get< place >( pending().marks );
         if constexpr ( metadata ) {
            doMarkMetadata( marks );
         } else {
            marks.dirty = true;
         }
      } );
   }
}

template < class E >
template < U16 number, class Key >
void EntityAdapter< E >::handleMember( Key const & memberKey ) {
   constexpr std::size_t place = placeOf( number );
   static_assert( place < std::tuple_size_v< decltype( Table::list ) > );
   using T = TraitsAt< place >;
   auto const key = static_cast< typename T::Key >( memberKey );
   if constexpr ( T::kind == Kind::children ) {
      // Whatever the mode, an adapter goes with its entity. What the stream has never heard of need
      // not be deleted there.
      bool const dropped = dropsChild< place >( key );
      bool const marked = flowOut() && std::get< place >( pending().marks ).dirty.contains( key );
      if ( !dropped && !marked && !collection< place >().isMember( key ) ) {
         return;
      }
   }
   Way const way = wayOut( number, std::get< place >( table.list ).name, settled< place >() );
   if ( way == Way::write ) {
      guarded( [&] { serializeSing< place >( key ); } );
   } else if ( way == Way::mark ) {
      guarded( [&] {
         flowOutIs( firstNumber( std::get< place >( table.list ) ) );
         auto & marks = std::get< place >( pending().marks );
         marks.dirty[key] = true;
         if constexpr ( T::kind == Kind::queue ) {
            doMarkMetadata( marks );
         }
      } );
   }
}

// Drops the adapter of a member that has gone or is another one now.
template < class E >
template < std::size_t place, class Key >
bool EntityAdapter< E >::dropsChild( Key const & key ) {
   auto & adapters = std::get< place >( kept_ ).adapters;
   auto const held = adapters.find( key );
   if ( held == adapters.end() ) {
      return false;
   }
   auto const * const member = collection< place >().find( key );
   if ( member && member->ptr() == held->second->entity() ) {
      return false;
   }
   adapters.erase( held );
   return true;
}

template < class E >
template < class... Part >
void EntityAdapter< E >::doWrite( U64 about, S16 attrId, Part const &... part ) {
   ByteWriter writer = output()->nextHeaderIs( about, attrId, plain );
   writer.put( tokenBegin );
   ( writer.put( part ), ... );
   writer.put( tokenEnd );
   output()->messageEnd();
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::serialize() {
   constexpr auto attribute = std::get< place >( table.list );
   if ( flowOut() ) {
      std::get< place >( pending().marks ).dirty = false;
   }
   doWrite( identifier(), static_cast< S16 >( attribute.number ),
            ( entity()->*attribute.reader )() );
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::serializeMetadata() {
   if ( flowOut() ) {
      std::get< place >( pending().marks ).metadataDirty = false;
   }
   doWrite( identifier(), static_cast< S16 >( std::get< place >( table.list ).metadataNumber ),
            collection< place >().metadata() );
}

template < class E >
template < std::size_t place, class Key >
void EntityAdapter< E >::serializeSing( Key const & key ) {
   using T = TraitsAt< place >;
   constexpr auto number = static_cast< S16 >( std::get< place >( table.list ).number );
   auto const & members = collection< place >();
   if constexpr ( T::kind == Kind::queue ) {
      U32 const i = ( key + byteQueueSlots - members.head() ) % byteQueueSlots;
      if ( i < members.count() ) {
         return doWrite( identifier(), number, key, members.at( key ) );
      }
   } else if ( auto const * const member = members.find( key ) ) {
      if constexpr ( T::kind == Kind::map ) {
         return doWrite( identifier(), number, key, *member );
      } else {
         dropsChild< place >( key );
         auto & child = std::get< place >( kept_ ).adapters[key];
         if ( !child ) {
            child = std::make_unique< typename T::Adapter >( **member );
            child->forcedIs( forced() );
            child->handleAttached( output(), identifier(), static_cast< U16 >( number ) );
         }
         return;
      }
   }
   doWrite( identifier(), static_cast< S16 >( -number ), key );
}

// The whole of a collection, and then the keys that have changed meanwhile. True if there is more.
template < class E >
template < std::size_t place >
bool EntityAdapter< E >::serializeColl() {
   constexpr U16 number = std::get< place >( table.list ).number;
   auto & marks = std::get< place >( pending().marks );
   auto const & members = collection< place >();
   if ( !synced< place >() ) {
      if ( !marks.bookmark ) {
         output()->doSendMarker( identifier(), number, Marker::begin );
         if constexpr ( TraitsAt< place >::kind == Kind::queue ) {
            marks.bookmark.emplace( typename TraitsAt< place >::Walk{ &members } );
         } else {
            marks.bookmark.emplace( members.walk() );
         }
      }
      for ( auto & next = *marks.bookmark; next; ) {
         if ( !output()->continueFlowOut() ) {
            return true;
         }
         auto const key = next.key();
         ++next;
         // The one that the walk stood on may have gone while there was no room.
         if constexpr ( TraitsAt< place >::kind == Kind::queue ) {
            serializeSing< place >( key );
         } else if ( members.isMember( key ) ) {
            serializeSing< place >( key );
            marks.dirty.erase( key );
         }
      }
      output()->doSendMarker( identifier(), number, Marker::end );
      marks.bookmark.reset();
      synced_ |= 1u << place;
   }
   while ( !marks.dirty.empty() ) {
      if ( !output()->continueFlowOut() ) {
         return true;
      }
      auto const key = marks.dirty.begin()->first;
      marks.dirty.erase( marks.dirty.begin() );
      serializeSing< place >( key );
   }
   return false;
}

// 0 when done.
template < class E >
template < std::size_t place >
U16 EntityAdapter< E >::flowAttr() {
   using T = TraitsAt< place >;
   constexpr auto attribute = std::get< place >( table.list );
   flowOut()->attrIdIs( firstNumber( attribute ) );
   auto & marks = std::get< place >( pending().marks );
   if constexpr ( T::kind == Kind::scalar ) {
      if ( marks.dirty ) {
         if ( !output()->continueFlowOut() ) {
            return attribute.number;
         }
         serialize< place >();
      }
      return 0;
   } else {
      if constexpr ( T::kind == Kind::queue ) {
         if ( marks.metadataDirty ) {
            if ( !output()->continueFlowOut() ) {
               return attribute.metadataNumber;
            }
            serializeMetadata< place >();
         }
      }
      return serializeColl< place >() ? firstNumber( attribute ) : U16{ 0 };
   }
}

template < class E >
U16 EntityAdapter< E >::handleAttrFlowOut( U16 attrId ) {
   for ( U16 const aborted : pending().pendingAborts ) {
      output()->doSendMarker( identifier(), aborted, Marker::abort );
   }
   pending().pendingAborts.clear();
   U16 next = 0;
   forEachPlace( table, [&]( auto place ) {
      if ( next == 0 && std::get< place >( table.list ).number >= attrId ) {
         next = flowAttr< place >();
      }
   } );
   return next;
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::doMark( Pending & pending ) {
   constexpr auto attribute = std::get< place >( table.list );
   auto & marks = std::get< place >( pending.marks );
   if constexpr ( TraitsAt< place >::kind == Kind::scalar ) {
      marks.dirty = !attribute.isKey; // a key stands in the orphan record
   } else {
      if ( marks.bookmark ) {
         marks.bookmark.reset();
         pending.pendingAborts.insert( attribute.number );
      }
      marks.dirty.clear();
      if constexpr ( TraitsAt< place >::kind == Kind::queue ) {
         marks.metadataDirty = true;
      }
   }
}

template < class E >
void EntityAdapter< E >::doMarkAll() {
   doDropChildren();
   forEachPlace( table, [&]( auto place ) { doMark< place >( pending() ); } );
}

template < class E >
void EntityAdapter< E >::doDropChildren() {
   synced_ = 0;
   forEachPlace( table, [&]( auto place ) {
      if constexpr ( TraitsAt< place >::kind == Kind::children ) {
         std::get< place >( kept_ ).adapters.clear();
      }
   } );
}

template < class E >
void EntityAdapter< E >::doSerializeOrphan() {
   ByteWriter writer = output()->nextHeaderIs( identifier(), orphanAttr, plain );
   auto const section = [&]( U8 number, auto const & value ) {
      std::vector< U8 > bytes;
      ByteWriter( bytes ).put( value );
      writer.put( number );
      writer.put( static_cast< U32 >( bytes.size() ) );
      writer.append( bytes.data(), bytes.size() );
   };
   writer.put( tokenBegin );
   section( sectionTypeName, String8( typeName() ) );
   section( sectionKey, key() );
   section( sectionIdentifier, identifier() );
   writer.put( tokenEnd );
   output()->messageEnd();
}

template < class E >
void EntityAdapter< E >::doSerializePlace( U64 parent, U16 parentAttrId ) {
   doWrite( parent, static_cast< S16 >( parentAttrId ), key(), identifier() );
}

} // namespace Korv::NboAttrLog
