// Memory of packets, given back and used again, and a shared buffer over such memory.
#pragma once

#include "mrp/platform/pelk/Pkt.h"

#include <memory>
#include <vector>

namespace Pelk {

// Keeps the memory of packets that have gone. A pool outlives its buffers.
//
// A piece of memory knows how far it is dirty: from there to its end all its bytes are zero. Who
// takes a piece clears what it will not overwrite, and says how far it may make it dirty.
class BufferPool {
 public:
   struct Memory {
      std::unique_ptr< U8[] > bytes;
      std::size_t size = 0;
      std::size_t dirty = 0;
   };

   // Pieces have `sizeMin` bytes; one that proves too short for what it is taken for is replaced
   // by a longer one for good.
   explicit BufferPool( std::size_t sizeMin ) : sizeMin_( sizeMin ) {}
   BufferPool( BufferPool const & ) = delete;
   BufferPool & operator=( BufferPool const & ) = delete;

   Memory take( std::size_t sizeNeeded );
   void give( Memory memory ) { free_.push_back( std::move( memory ) ); }

 private:
   std::size_t sizeMin_;
   std::vector< Memory > free_;
};

// Objects of one class that come and go with every frame: their memory is kept for the next one.
template < class T >
class Recycled {
 public:
   static void * operator new( std::size_t bytes ) {
      if ( bytes != sizeof( T ) || spare().empty() ) {
         return ::operator new( bytes );
      }
      void * const memory = spare().back();
      spare().pop_back();
      return memory;
   }
   static void operator delete( void * memory, std::size_t bytes ) {
      if ( bytes == sizeof( T ) ) {
         spare().push_back( memory );
      } else {
         ::operator delete( memory );
      }
   }

 private:
   // Never destroyed: a static packet may go after it.
   static std::vector< void * > & spare() {
      static auto & list = *new std::vector< void * >;
      return list;
   }
};

class PooledBuffer : public Pkt::SharedBuffer, public Recycled< PooledBuffer > {
 public:
   PooledBuffer( BufferPool & pool, BufferPool::Memory memory, std::size_t size,
                 std::size_t dataOffset, std::size_t dataBytes )
      : SharedBuffer( memory.bytes.get(), size, memory.bytes.get() + dataOffset, dataBytes ),
        pool_( pool ), memory_( std::move( memory ) ) {}
   ~PooledBuffer() override { pool_.give( std::move( memory_ ) ); }

 private:
   BufferPool & pool_;
   BufferPool::Memory memory_;
};

} // namespace Pelk
