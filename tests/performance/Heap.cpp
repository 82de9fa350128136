#include "tests/performance/Heap.h"

#include <cstdlib>
#include <new>

namespace Performance {

namespace {

Heap now;

// In front of each block; keeps it aligned for everything.
struct alignas( std::max_align_t ) Size {
   std::size_t asked;
};

std::size_t charged( std::size_t asked ) { return ( asked + 8 + 15 ) / 16 * 16; }

void * take( std::size_t asked ) {
   void * const memory = std::malloc( sizeof( Size ) + asked );
   if ( !memory ) {
      throw std::bad_alloc();
   }
   ++now.allocations;
   now.bytes += charged( asked );
   return new ( memory ) Size{ asked } + 1;
}

void give( void * block ) {
   if ( block ) {
      Size * const size = static_cast< Size * >( block ) - 1;
      now.bytes -= charged( size->asked );
      std::free( size );
   }
}

} // namespace

Heap heap() { return now; }

} // namespace Performance

// The standard library's array forms come down to these. A sanitizer's do not; they are not counted
// then, and are pairs of their own.
void * operator new( std::size_t size ) { return Performance::take( size ); }
void * operator new( std::size_t size, std::nothrow_t const & ) noexcept {
   return Performance::take( size );
}
void operator delete( void * block ) noexcept { Performance::give( block ); }
void operator delete( void * block, std::size_t ) noexcept { Performance::give( block ); }
