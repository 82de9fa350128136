#include "mrp/platform/korv/Notifier.h"

#include <algorithm>

namespace Korv {

Notifier::~Notifier() {
   if ( auto * const single = only() ) {
      single->notifier_ = nullptr;
   } else if ( auto * const held = watchers() ) {
      for ( auto *& watcher : held->list ) {
         if ( watcher ) {
            watcher->notifier_ = nullptr;
            watcher = nullptr;
         }
      }
      held->referenceDrop();
   }
}

void Notifier::watcherAdd( ReactorBase * watcher ) const {
   if ( !isWatched() ) {
      return onlyIs( watcher );
   }
   if ( auto * const first = only() ) {
      Ptr< Watchers > const made( new Watchers );
      made->list = { first, watcher };
      made->referenceAdd();
      watching_ = reinterpret_cast< std::uintptr_t >( made.ptr() ) + listMark;
      return;
   }
   watchers()->list.push_back( watcher );
}

void Notifier::watcherDel( ReactorBase * watcher ) const {
   if ( only() == watcher ) {
      return onlyIs( nullptr );
   }
   auto & list = watchers()->list;
   auto const found = std::find( list.begin(), list.end(), watcher );
   if ( found == list.end() ) {
      return;
   }
   *found = nullptr;
   if ( watchers()->running == 0 ) {
      compact();
   }
}

void Notifier::compact() const {
   auto * const held = watchers();
   held->list.erase( std::remove( held->list.begin(), held->list.end(), nullptr ),
                     held->list.end() );
   if ( held->list.empty() ) {
      watching_ = 0;
      held->referenceDrop();
   }
}

ReactorBase::~ReactorBase() { watchedIs( nullptr ); }

void ReactorBase::isRegisteredNotifieeIs( bool registered ) {
   if ( registered == registered_ ) {
      return;
   }
   if ( notifier_ ) {
      if ( registered ) {
         notifier_->watcherAdd( this );
      } else {
         notifier_->watcherDel( this );
      }
   }
   registered_ = registered;
}

void ReactorBase::watchedIs( Notifier const * notifier ) {
   if ( notifier == notifier_ ) {
      return;
   }
   if ( notifier_ && registered_ ) {
      notifier_->watcherDel( this );
   }
   notifier_ = nullptr;
   if ( notifier && registered_ ) {
      notifier->watcherAdd( this );
   }
   notifier_ = notifier;
}

} // namespace Korv
