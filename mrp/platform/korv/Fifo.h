// A first-in first-out row that is filled and emptied again and again: it keeps its room and then
// allocates nothing.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace Korv {

// T is a small value: entries pass by value, so that they stay in registers on their way in.
template < class T >
class Fifo {
 public:
   std::size_t size() const { return tail_ - head_; }
   bool empty() const { return head_ == tail_; }
   T front() const { return entries_[head_]; }

   void enq( T value ) {
      if ( tail_ == room_ ) [[unlikely]] {
         makeRoom();
      }
      entries_[tail_++] = value;
   }

   // The oldest entry, or an empty value.
   T deq() {
      if ( empty() ) {
         return T{};
      }
      T const value = front();
      if ( ++head_ == tail_ ) [[unlikely]] {
         head_ = tail_ = 0;
      }
      return value;
   }

   void clear() { head_ = tail_ = 0; }

 private:
   // Moves the entries to the front, or doubles the room.
   [[gnu::noinline]] void makeRoom() {
      std::size_t const count = size();
      if ( head_ >= count && head_ != 0 ) {
         std::copy( &entries_[head_], &entries_[tail_], &entries_[0] );
      } else {
         room_ = std::max< std::size_t >( 16, 2 * room_ );
         auto wider = std::make_unique< T[] >( room_ );
         std::copy( entries_.get() + head_, entries_.get() + tail_, wider.get() );
         entries_ = std::move( wider );
      }
      head_ = 0;
      tail_ = count;
   }

   std::unique_ptr< T[] > entries_;
   std::size_t room_ = 0;
   std::size_t head_ = 0;
   std::size_t tail_ = 0;
};

} // namespace Korv
