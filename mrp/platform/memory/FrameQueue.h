// Frames that wait, as plain bytes. First in, first out; the memory of frames that have been taken
// is used for those to come, so that a queue in steady use allocates nothing.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>
#include <span>
#include <vector>

namespace Memory {

using Frame = std::vector< Korv::U8 >;
using FrameBytes = std::span< Korv::U8 const >;

class FrameQueue {
 public:
   std::size_t size() const { return size_; }
   bool empty() const { return size_ == 0; }

   void enq( FrameBytes frame );
   // The oldest frame; there is one. Good until the next enq.
   FrameBytes deq();

 private:
   // A ring: the frames stand in size_ places from head_ on.
   std::vector< Frame > ring_;
   std::size_t head_ = 0;
   std::size_t size_ = 0;
};

} // namespace Memory
