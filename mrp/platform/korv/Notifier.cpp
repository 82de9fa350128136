#include "mrp/platform/korv/Notifier.h"

#include <algorithm>

namespace Korv {

Notifier::~Notifier() {
   if ( watchers_ ) {
      for ( auto *& watcher : watchers_->list ) {
         if ( watcher ) {
            watcher->notifier_ = nullptr;
            watcher = nullptr;
         }
      }
   }
}

void Notifier::watcherAdd( ReactorBase * watcher ) const {
   if ( !watchers_ ) {
      watchers_ = new Watchers;
   }
   watchers_->list.push_back( watcher );
}

void Notifier::watcherDel( ReactorBase * watcher ) const {
   auto & list = watchers_->list;
   auto const found = std::find( list.begin(), list.end(), watcher );
   if ( found == list.end() ) {
      return;
   }
   *found = nullptr;
   if ( watchers_->running == 0 ) {
      compact();
   }
}

void Notifier::compact() const {
   auto & list = watchers_->list;
   list.erase( std::remove( list.begin(), list.end(), nullptr ), list.end() );
   if ( list.empty() ) {
      watchers_ = nullptr;
   }
}

ReactorBase::~ReactorBase() { watchedIs( nullptr ); }

void ReactorBase::isRegisteredNotifieeIs( bool registered ) {
   if ( registered == registered_ ) {
      return;
   }
   registered_ = registered;
   if ( notifier_ ) {
      if ( registered ) {
         notifier_->watcherAdd( this );
      } else {
         notifier_->watcherDel( this );
      }
   }
}

void ReactorBase::watchedIs( Notifier const * notifier ) {
   if ( notifier == notifier_ ) {
      return;
   }
   if ( notifier_ && registered_ ) {
      notifier_->watcherDel( this );
   }
   notifier_ = notifier;
   if ( notifier_ && registered_ ) {
      notifier_->watcherAdd( this );
   }
}

} // namespace Korv
