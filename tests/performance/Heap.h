// What this program takes from the heap, counted by a replaced operator new. Blocks carry their
// size in front of them, so that the count is the same on every machine.
#pragma once

#include <cstddef>

namespace Performance {

struct Heap {
   unsigned long allocations = 0; // ever made
   // Of the blocks that are live: what was asked for, and 8 bytes more for each, in steps of 16,
   // as malloc takes them.
   std::size_t bytes = 0;
};

Heap heap();

} // namespace Performance
