// A first-in first-out row that is filled and emptied again and again: it keeps its room and then
// allocates nothing.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>
#include <vector>

namespace Korv {

template < class T >
class Fifo {
 public:
   std::size_t size() const { return entries_.size() - head_; }
   bool empty() const { return head_ == entries_.size(); }
   T const & front() const { return entries_[head_]; }

   void enq( T const & value ) {
      if ( head_ != 0 && entries_.size() == entries_.capacity() ) {
         entries_.erase( entries_.begin(),
                         entries_.begin() + static_cast< std::ptrdiff_t >( head_ ) );
         head_ = 0;
      }
      entries_.push_back( value );
   }

   // The oldest entry, or an empty value.
   T deq() {
      if ( empty() ) {
         return T{};
      }
      T const value = entries_[head_++];
      if ( head_ == entries_.size() ) {
         entries_.clear();
         head_ = 0;
      }
      return value;
   }

 private:
   std::vector< T > entries_;
   std::size_t head_ = 0;
};

} // namespace Korv
