// A first-in first-out queue whose entries have a U32 position, one past the last entry's for each
// newcomer, so that an entry can be named.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace Korv {

template < class T >
class Queue {
   struct Entry {
      U32 position;
      T value;
   };

 public:
   std::size_t size() const { return entries_.size(); }
   bool empty() const { return entries_.empty(); }
   T const & front() const { return entries_.front().value; }
   U32 frontPosition() const { return entries_.front().position; }

   T const * find( U64 position ) const {
      auto const found = lowerBound( position );
      return isAt( found, position ) ? &found->value : nullptr;
   }

   // Walk, from the oldest: `for ( auto w = queue.walk(); w; ++w ) use( w.position(), w.value() );`
   // It finds its next entry by position, so that the queue may change meanwhile.
   class Walk {
    public:
      explicit operator bool() const { return entry() != nullptr; }
      Walk & operator++() {
         auto const next = queue_->lowerBound( position_ + 1 );
         position_ = next == queue_->entries_.end() ? position_ + 1 : next->position;
         return *this;
      }
      U32 position() const { return static_cast< U32 >( position_ ); }
      T const & value() const { return *entry(); }

    private:
      friend class Queue;
      explicit Walk( Queue const * queue ) : queue_( queue ) {
         position_ = queue->empty() ? 0 : queue->frontPosition();
      }
      T const * entry() const { return queue_->find( position_ ); }
      Queue const * queue_;
      U64 position_; // has one past the last that an entry can have
   };
   Walk walk() const { return Walk( this ); }

   // The position given: the queue's next number, or the last entry's plus 1 where that is higher.
   U32 enq( T const & value ) {
      if ( !empty() ) {
         next_ = std::max( next_, entries_.back().position + 1 );
      }
      entries_.push_back( { next_, value } );
      return next_++;
   }

   // The oldest entry, or an empty value.
   T deq() {
      if ( empty() ) {
         return T{};
      }
      T const value = front();
      entries_.pop_front();
      return value;
   }

   // Writes the entry at a position, which is made if it is missing; true if that changed
   // something.
   bool put( U32 position, T const & value ) {
      auto const found = lowerBound( position );
      if ( !isAt( found, position ) ) {
         entries_.insert( found, { position, value } );
         return true;
      }
      T & held = entries_[static_cast< std::size_t >( found - entries_.begin() )].value;
      return std::exchange( held, value ) != value;
   }

   bool del( U32 position ) {
      auto const found = lowerBound( position );
      bool const isThere = isAt( found, position );
      if ( isThere ) {
         entries_.erase( found );
      }
      return isThere;
   }

 private:
   using Entries = std::deque< Entry >;

   typename Entries::const_iterator lowerBound( U64 position ) const {
      return std::lower_bound( entries_.begin(), entries_.end(), position,
                               []( Entry const & e, U64 p ) { return e.position < p; } );
   }
   bool isAt( typename Entries::const_iterator entry, U64 position ) const {
      return entry != entries_.end() && entry->position == position;
   }

   Entries entries_;
   U32 next_ = 0;
};

} // namespace Korv
