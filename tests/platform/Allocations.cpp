#include "tests/platform/Allocations.h"

#include <cstdlib>
#include <new>

namespace Platform {

namespace {
unsigned long count = 0;
}

unsigned long allocations() { return count; }

} // namespace Platform

// The forms that the library uses: one left out would be the runtime's own, and a block of one
// would go back by the other.
void * operator new( std::size_t size, std::nothrow_t const & ) noexcept {
   ++Platform::count;
   return std::malloc( size );
}
void * operator new( std::size_t size ) {
   if ( void * const memory = operator new( size, std::nothrow ) ) {
      return memory;
   }
   throw std::bad_alloc();
}
void operator delete( void * memory ) noexcept { std::free( memory ); }
void operator delete( void * memory, std::size_t ) noexcept { std::free( memory ); }
void operator delete( void * memory, std::nothrow_t const & ) noexcept { std::free( memory ); }
