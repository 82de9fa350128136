// Sending. Included by EntityAdapter.h.
#pragma once

#include "mrp/platform/attrlog/EntityAdapter.h"

namespace Korv::NboAttrLog {

// What each reactor does with a change: writes it, or marks it for the flow, or neither.
template < class E >
template < std::size_t place, class Write, class Mark >
void EntityAdapter< E >::handleChange( U16 attrId, Write && write, Mark && mark ) {
   static_assert( place < std::tuple_size_v< decltype( Table::list ) >, "no such attribute" );
   constexpr auto attribute = std::get< place >( table.list );
   Way const way = wayOut( attrId, attribute.name );
   if ( way == Way::write && ( !gathers || forced() ) ) {
      guarded( write );
   } else if ( way != Way::stop ) {
      guarded( [&] {
         flowOutIs( gathers ? firstOwnAttr : firstNumber( attribute ) );
         mark( std::get< place >( pending().marks ) );
      } );
   }
}

template < class E >
template < U16 number >
void EntityAdapter< E >::handleAttr() {
   constexpr std::size_t place = placeOf( number );
   handleChange< place >(
      number, [&] { korvHandleSerialize< place >(); },
      [&]( auto & marks ) {
         if constexpr ( gathers ) {
            doStopListening();
         } else if constexpr ( kindAt< place > == Kind::queue ) {
            doMarkSpan( marks );
         } else {
            marks.dirty = true;
         }
      } );
}

template < class E >
template < U16 number, class Key >
void EntityAdapter< E >::handleMember( Key const & memberKey ) {
   constexpr std::size_t place = placeOf( number );
   using T = TraitsAt< place >;
   auto const key = static_cast< typename T::Key >( memberKey );
   bool known = true;
   if constexpr ( kindAt< place > == Kind::children ) {
      // Whatever the mode, an adapter goes with its entity. What the stream has never heard of need
      // not be deleted there.
      auto const * const member = collection< place >().find( key );
      known = nboAttrLogAdapterDel< place >( key, member ? member->ptr() : nullptr );
      bool const marked =
         flowOut() && std::get< place >( pending().marks ).korvIsDirty.contains( key );
      if ( !known && !marked && !member ) {
         return;
      }
   }
   handleChange< place >(
      number, [&] { korvHandleSerializeSing< place >( key ); },
      [&]( auto & marks ) {
         bool & mark = marks.korvIsDirty[key];
         mark = mark || known;
         if constexpr ( kindAt< place > == Kind::children ) {
            if ( !mark && !collection< place >().isMember( key ) ) {
               marks.korvIsDirtyDel( key ); // come and gone
            }
         } else if constexpr ( kindAt< place > == Kind::queue ) {
            doMarkSpan( marks );
         }
      } );
}

// A scalar's last value is all that counts. A change of a collection must not overtake what is
// pending for it.
template < class E >
bool EntityAdapter< E >::prepareImmediateTransmission( U16 attrId, bool noBuffer ) const {
   bool settled = true;
   forEachPlace( table, [&]( auto place ) {
      if ( kindAt< place > != Kind::scalar &&
           isNumber( std::get< place >( table.list ), attrId ) ) {
         settled = !flowOut() || !isPending< place >();
      }
   } );
   return settled && !noBuffer;
}

// Whether something of the attribute has still to be sent.
template < class E >
template < std::size_t place >
bool EntityAdapter< E >::isPending() const {
   auto const & marks = std::get< place >( pending().marks );
   bool pends = false;
   if constexpr ( requires { marks.dirty; } ) {
      pends = marks.dirty;
   }
   if constexpr ( gathers ) {
      pends = pends || value< place >() != std::get< place >( told_.values );
   }
   if constexpr ( requires { marks.korvIsDirty; } ) {
      pends = pends || !marks.korvHasSynced || !marks.korvIsDirty.empty();
   }
   return pends;
}

// The member's adapter, made and attached if there is none yet. From then on it sends all that is
// to be said of the member; of one that is told in one step, not before its values have come too.
template < class E >
template < std::size_t place, class Key, class Member >
void EntityAdapter< E >::nboAttrLogAdapterIs( Key const & key, Member & member ) {
   using Child = typename TraitsAt< place >::Adapter;
   auto const make = [&] { return std::make_unique< Child >( member, !Child::isSmall ); };
   auto & adapter = std::get< place >( kept_ ).adapters.findOrMake( key, make );
   if ( adapter->entity() != &member ) {
      adapter = make();
   }
   if ( !adapter->output() ) {
      constexpr U16 number = std::get< place >( table.list ).number;
      adapter->forcedIs( forced() );
      if constexpr ( Child::isSmall ) {
         adapter->handleNewcomer( output(), member, identifier(), number );
      } else {
         adapter->handleAttached( output(), identifier(), number );
      }
   }
}

// Drops the adapter of a member that has gone or is another one now; false if there is none.
template < class E >
template < std::size_t place, class Key, class Member >
bool EntityAdapter< E >::nboAttrLogAdapterDel( Key const & key, Member const * member ) {
   auto & adapters = std::get< place >( kept_ ).adapters;
   auto const * const held = adapters.find( key );
   if ( !held || ( member && member == ( *held )->entity() ) ) {
      return false;
   }
   return adapters.erase( key );
}

// One plain message about this entity.
template < class E >
template < class... Part >
[[gnu::flatten]] void EntityAdapter< E >::doWrite( S16 attrId, Part const &... part ) {
   output()->doWrite( [&]( auto & to ) { putMessage( to, identifier(), attrId, part... ); } );
}

// A scalar, or a queue's span.
template < class E >
template < std::size_t place >
void EntityAdapter< E >::korvHandleSerialize() {
   if ( flowOut() ) {
      std::get< place >( pending().marks ).dirty = false;
   }
   constexpr auto number = static_cast< S16 >( firstNumber( std::get< place >( table.list ) ) );
   if constexpr ( kindAt< place > == Kind::queue ) {
      doWrite( number, collection< place >().metadata() );
   } else {
      if constexpr ( gathers ) {
         std::get< place >( told_.values ) = value< place >();
      }
      doWrite( number, value< place >() );
   }
}

// One member, or that it has gone.
template < class E >
template < std::size_t place, class Key >
void EntityAdapter< E >::korvHandleSerializeSing( Key const & key ) {
   constexpr auto number = static_cast< S16 >( std::get< place >( table.list ).number );
   auto const & members = collection< place >();
   if constexpr ( kindAt< place > == Kind::queue ) {
      if ( isMember( members, key ) ) {
         return doWrite( number, key, members.at( key ) );
      }
   } else if ( auto const * const member = members.find( key ) ) {
      if constexpr ( kindAt< place > == Kind::map ) {
         return doWrite( number, key, *member );
      } else {
         return nboAttrLogAdapterIs< place >( key, **member );
      }
   }
   doWrite( static_cast< S16 >( -number ), key );
}

// The whole of a scalar or of a queue.
template < class E >
template < std::size_t place, class To >
void EntityAdapter< E >::putWhole( To & to ) const {
   constexpr auto attribute = std::get< place >( table.list );
   constexpr auto number = static_cast< S16 >( attribute.number );
   if constexpr ( kindAt< place > == Kind::queue ) {
      auto const & bytes = collection< place >();
      putMessage( to, identifier(), static_cast< S16 >( attribute.metadataNumber ),
                  bytes.metadata() );
      putMarker( to, identifier(), attribute.number, Marker::begin );
      for ( U32 i = 0; i < bytes.count(); ++i ) {
         U32 const slot = bytes.position( i );
         putMessage( to, identifier(), number, static_cast< U8 >( slot ), bytes.at( slot ) );
      }
      putMarker( to, identifier(), attribute.number, Marker::end );
   } else if constexpr ( !attribute.isKey ) {
      putMessage( to, identifier(), number, value< place >() );
   }
}

// A stream begins with hundreds of thousands of attributes: each is sent in one step, with no flow.
// Flattened, so that the writer's place stays in a register for all of some fifty values.
template < class E >
[[gnu::flatten]] bool EntityAdapter< E >::doSerializeAll( U64 parent, U16 parentAttrId ) {
   if constexpr ( isSmall ) {
      output()->doWrite( [&]( auto & to ) {
         putOwnOrphan( to, parent, parentAttrId );
         forEachPlace( table, [&]( auto place ) { putWhole< place >( to ); } );
      } );
      if constexpr ( gathers ) {
         forEachPlace(
            table, [&]( auto place ) { std::get< place >( told_.values ) = value< place >(); } );
      }
   }
   return isSmall;
}

// The whole of a collection, and then the keys that have changed meanwhile. True if there is more.
template < class E >
template < std::size_t place >
bool EntityAdapter< E >::korvHandleSerializeColl() {
   using T = TraitsAt< place >;
   constexpr U16 number = std::get< place >( table.list ).number;
   auto & marks = std::get< place >( pending().marks );
   auto const & members = collection< place >();
   if ( !marks.korvHasSynced ) {
      if ( !marks.bookmark ) {
         output()->doSendMarker( identifier(), number, Marker::begin );
         if constexpr ( kindAt< place > == Kind::queue ) {
            marks.bookmarkIs( typename T::Walk{ &members } );
         } else {
            marks.bookmarkIs( members.walk() );
         }
      }
      for ( auto & next = *marks.bookmark; next; ) {
         auto const key = next.key();
         ++next;
         if ( isMember( members, key ) ) { // it may have gone while there was no room
            korvHandleSerializeSing< place >( key );
            marks.korvIsDirtyDel( key );
         }
         if ( next && !output()->continueFlowOut() ) {
            return true;
         }
      }
      output()->doSendMarker( identifier(), number, Marker::end );
      marks.bookmarkIs( {} );
      marks.korvHasSynced = true;
   }
   while ( !marks.korvIsDirty.empty() ) {
      if ( !output()->continueFlowOut() ) {
         return true;
      }
      auto const key = marks.korvIsDirty.begin()->first;
      marks.korvIsDirtyDel( key );
      korvHandleSerializeSing< place >( key );
   }
   return false;
}

// One attribute's turn in a flow. 0 when it is done, else the number to come back to.
template < class E >
template < std::size_t place >
U16 EntityAdapter< E >::flowAttr() {
   constexpr auto attribute = std::get< place >( table.list );
   constexpr U16 number = firstNumber( attribute );
   if ( !isPending< place >() ) {
      return 0;
   }
   flowOut()->attrIdIs( number );
   if ( !output()->continueFlowOut() ) {
      return number;
   }
   auto & marks = std::get< place >( pending().marks );
   if constexpr ( kindAt< place > == Kind::scalar ) {
      korvHandleSerialize< place >();
   } else if constexpr ( kindAt< place > == Kind::queue ) {
      if ( marks.dirty ) {
         korvHandleSerialize< place >();
      }
   }
   if constexpr ( requires { marks.korvIsDirty; } ) {
      return korvHandleSerializeColl< place >() ? number : U16{ 0 };
   }
   return 0;
}

// There are no generic attributes to go through first: the orphan record has told them.
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
   if constexpr ( gathers ) {
      if ( next == 0 && attrId > firstOwnAttr ) {
         return handleAttrFlowOut( firstOwnAttr ); // what has changed since it passed by
      }
      if ( next == 0 ) {
         doListen();
      }
   }
   return next;
}

template < class E >
template < std::size_t place >
void EntityAdapter< E >::doMark( Pending & pending ) {
   constexpr auto attribute = std::get< place >( table.list );
   auto & marks = std::get< place >( pending.marks );
   if constexpr ( kindAt< place > == Kind::scalar ) {
      marks.dirty = !attribute.isKey; // a key stands in the orphan record
   } else {
      if ( marks.bookmark ) {
         marks.bookmarkIs( {} );
         pending.pendingAborts.insert( attribute.number );
      }
      marks.korvIsDirty.clear();
      marks.korvHasSynced = false;
      if constexpr ( kindAt< place > == Kind::queue ) {
         marks.dirty = true;
      }
   }
}

template < class E >
void EntityAdapter< E >::doMarkAll() {
   std::size_t limit = noLimit;
   doDropChildren( limit );
   forEachPlace( table, [&]( auto place ) { doMark< place >( pending() ); } );
}

template < class E >
void EntityAdapter< E >::doDropChildren( std::size_t & limit ) {
   forEachPlace( table, [&]( auto place ) {
      if constexpr ( kindAt< place > == Kind::children ) {
         auto & adapters = std::get< place >( kept_ ).adapters;
         for ( auto adapter = adapters.walk(); adapter && limit > 0; ++adapter ) {
            adapter.value()->doDropChildren( limit );
            if ( limit > 0 ) {
               adapters.erase( adapter.key() );
               --limit;
            }
         }
      }
   } );
}

template < class E >
template < class To >
void EntityAdapter< E >::putOwnOrphan( To & to, U64 parent, U16 parentAttrId ) const {
   auto const ownKey = key();
   putOrphan( to, identifier(), table.typeName, ownKey );
   if ( parent ) {
      putMessage( to, parent, static_cast< S16 >( parentAttrId ), ownKey, identifier() );
   }
}

template < class E >
void EntityAdapter< E >::doSerializeOrphan( U64 parent, U16 parentAttrId ) {
   output()->doWrite( [&]( auto & to ) { putOwnOrphan( to, parent, parentAttrId ); } );
}

} // namespace Korv::NboAttrLog
