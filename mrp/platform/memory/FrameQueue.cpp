#include "mrp/platform/memory/FrameQueue.h"

#include <algorithm>

namespace Memory {

void FrameQueue::enq( FrameBytes frame ) {
   if ( size_ == ring_.size() ) {
      std::rotate( ring_.begin(), ring_.begin() + static_cast< std::ptrdiff_t >( head_ ),
                   ring_.end() );
      head_ = 0;
      ring_.emplace_back();
   }
   ring_[( head_ + size_ ) % ring_.size()].assign( frame.begin(), frame.end() );
   ++size_;
}

FrameBytes FrameQueue::deq() {
   Frame const & frame = ring_[head_];
   head_ = ( head_ + 1 ) % ring_.size();
   --size_;
   return frame;
}

} // namespace Memory
