// Watching and being watched.
//
// What can be watched derives from Notifier and nests the interface of its watchers as `Reactor`,
// with an operation per attribute (`onLeaveTime()`, `onIntfLeaveTime( intfId )`) that is empty by
// default. A watcher derives from that Reactor and points itself at its notifier.
//
// The rule of a notification: watchers are called at once, from within the mutator, in the order
// of their registration. A watcher may come or go meanwhile, in any watcher's operation: one that
// has gone is not called any more, one that has come hears the next change.
//
// With no watcher a notifier costs one null pointer and a notification one test. A single one,
// which each of hundreds of thousands of mirrored attributes has, costs no memory.
#pragma once

#include "mrp/platform/korv/Ptr.h"

#include <cstdint>
#include <vector>

namespace Korv {

class ReactorBase;

class Notifier : public PtrInterface {
 public:
   ~Notifier() override;

   bool isWatched() const { return watching_ != 0; }

   // The notification of a change: `notify( &Reactor::onLeaveTime )`, with the key for a
   // collection. Callers have compared and stored already.
   template < class R, class... P, class... A >
   void notify( void ( R::*on )( P... ), A const &... key ) const {
      if ( isWatched() ) [[unlikely]] {
         notifyWatchers( on, key... );
      }
   }

 protected:
   // Compare, store, notify, in one place.
   template < class T, class V, class On >
   void set( T & attribute, V const & value, On on ) {
      if ( attribute != value ) {
         attribute = value;
         notify( on );
      }
   }
   // The value under a key of a keyed collection; one that is not there reads as an empty value.
   template < class Map, class K >
   static auto valueAt( Map const & map, K const & key ) {
      auto const * const found = map.find( key );
      return found ? *found : std::remove_cvref_t< decltype( *found ) >{};
   }
   // The same as set() for a member of a keyed collection of values, and for its removal.
   template < class Map, class K, class V, class On >
   void setMember( Map & map, K const & key, V const & value, On on ) {
      if ( auto * held = map.find( key ) ) {
         if ( *held == value ) {
            return;
         }
         *held = value;
      } else {
         map.insertOrAssign( key, value );
      }
      notify( on, key );
   }
   template < class Map, class K, class On >
   void delMember( Map & map, K const & key, On on ) {
      if ( map.erase( key ) ) {
         notify( on, key );
      }
   }
   template < class Map, class On >
   void delAllMembers( Map & map, On on ) {
      for ( auto member = map.walk(); member; ++member ) {
         auto const key = member.key();
         delMember( map, key, on );
      }
   }

 private:
   friend class ReactorBase;

   // Kept alive by a notification that runs over it, so that the notifier itself may go.
   struct Watchers : PtrInterface {
      std::vector< ReactorBase * > list; // null: gone during a notification
      U32 running = 0;                   // notifications under way
   };
   // One notification. It ends also by what a watcher throws.
   struct Run {
      explicit Run( Notifier const & n ) : watchers( n.watchers() ), notifier( n ) {
         ++watchers->running;
      }
      Run( Run const & ) = delete;
      Run & operator=( Run const & ) = delete;
      ~Run() {
         // If the list is held here alone, the notifier has gone, and must not be touched.
         if ( --watchers->running == 0 && watchers->references() > 1 ) {
            notifier.compact();
         }
      }
      Ptr< Watchers > const watchers;
      Notifier const & notifier;
   };

   template < class R, class... P, class... A >
   [[gnu::noinline]] void notifyWatchers( void ( R::*on )( P... ), A const &... key ) const {
      if ( auto * watcher = only() ) {
         ( static_cast< R * >( watcher )->*on )( key... );
         return;
      }
      Run const run( *this );
      auto const & list = run.watchers->list;
      std::size_t const present = list.size();
      for ( std::size_t i = 0; i < present; ++i ) {
         if ( auto * watcher = list[i] ) {
            ( static_cast< R * >( watcher )->*on )( key... );
         }
      }
   }

   void watcherAdd( ReactorBase * watcher ) const;
   void watcherDel( ReactorBase * watcher ) const;
   void compact() const;

   // The watcher if there is only one, else null; the list if there have been two, else null.
   ReactorBase * only() const {
      return watching_ & listMark ? nullptr : reinterpret_cast< ReactorBase * >( watching_ );
   }
   Watchers * watchers() const {
      return watching_ & listMark ? reinterpret_cast< Watchers * >( watching_ - listMark )
                                  : nullptr;
   }
   void onlyIs( ReactorBase * watcher ) const {
      watching_ = reinterpret_cast< std::uintptr_t >( watcher );
   }

   // The address of the only watcher; or, with the mark added, of a list that this owns a reference
   // to; or 0.
   static constexpr std::uintptr_t listMark = 1;
   mutable std::uintptr_t watching_ = 0;
};

// A watcher's tie to what it watches. It owns nothing: the notifier, when it goes first, cuts the
// tie of those that are registered; a reactor in destruction has cut it already and hears nothing.
class ReactorBase {
 public:
   ReactorBase() = default;
   ReactorBase( ReactorBase const & ) = delete;
   ReactorBase & operator=( ReactorBase const & ) = delete;
   virtual ~ReactorBase();

   // A reactor can stay with its notifier and yet hear nothing. The notifier does not know of it
   // then: whoever switches it off keeps the notifier alive, or points the reactor elsewhere first.
   bool isRegisteredNotifiee() const { return registered_; }
   void isRegisteredNotifieeIs( bool registered );

 protected:
   Notifier const * watched() const { return notifier_; }
   void watchedIs( Notifier const * notifier );

 private:
   friend class Notifier;
   Notifier const * notifier_ = nullptr;
   bool registered_ = true;
};

// Base of the nested Reactor classes: `class Reactor : public Korv::ReactorOn< MrpConfig >`.
template < class Subject >
class ReactorOn : public ReactorBase {
 public:
   Subject const * notifier() const { return static_cast< Subject const * >( watched() ); }
   void notifierIs( Subject const * subject ) { watchedIs( subject ); }
   void notifierIs( Ptr< Subject const > const & subject ) { watchedIs( subject.ptr() ); }
};

} // namespace Korv
