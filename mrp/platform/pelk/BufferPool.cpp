#include "mrp/platform/pelk/BufferPool.h"

#include <algorithm>

namespace Pelk {

BufferPool::Memory BufferPool::take( std::size_t sizeNeeded ) {
   Memory memory;
   if ( !free_.empty() ) {
      memory = std::move( free_.back() );
      free_.pop_back();
   }
   if ( memory.size < sizeNeeded || !memory.bytes ) {
      memory.size = std::max( sizeMin_, sizeNeeded );
      memory.bytes = std::make_unique< U8[] >( memory.size );
      memory.dirty = 0;
   }
   return memory;
}

} // namespace Pelk
