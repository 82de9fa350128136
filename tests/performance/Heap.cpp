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

// All forms: one left out would be the runtime's own, and a block of one would go back by the
// other.
void * operator new( std::size_t size ) { return Performance::take( size ); }
void * operator new[]( std::size_t size ) { return Performance::take( size ); }
void * operator new( std::size_t size, std::nothrow_t const & ) noexcept {
   return Performance::take( size );
}
void * operator new[]( std::size_t size, std::nothrow_t const & ) noexcept {
   return Performance::take( size );
}
void operator delete( void * block ) noexcept { Performance::give( block ); }
void operator delete[]( void * block ) noexcept { Performance::give( block ); }
void operator delete( void * block, std::size_t ) noexcept { Performance::give( block ); }
void operator delete[]( void * block, std::size_t ) noexcept { Performance::give( block ); }
void operator delete( void * block, std::nothrow_t const & ) noexcept {
   Performance::give( block );
}
void operator delete[]( void * block, std::nothrow_t const & ) noexcept {
   Performance::give( block );
}
