#include "tests/platform/Allocations.h"

#include <cstdlib>
#include <new>

namespace Platform {

namespace {
unsigned long count = 0;
}

unsigned long allocations() { return count; }

} // namespace Platform

void * operator new( std::size_t size ) {
   ++Platform::count;
   if ( void * const memory = std::malloc( size ) ) {
      return memory;
   }
   throw std::bad_alloc();
}
void operator delete( void * memory ) noexcept { std::free( memory ); }
void operator delete( void * memory, std::size_t ) noexcept { std::free( memory ); }
