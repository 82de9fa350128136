// A file descriptor with an owner.
#pragma once

#include <utility>

namespace Linux {

// Closes it at its end. Below 0 there is none.
class Descriptor {
 public:
   explicit Descriptor( int number = -1 ) : number_( number ) {}
   Descriptor( Descriptor && other ) noexcept : number_( std::exchange( other.number_, -1 ) ) {}
   Descriptor & operator=( Descriptor && other ) noexcept {
      std::swap( number_, other.number_ );
      return *this;
   }
   ~Descriptor();

   int number() const { return number_; }
   explicit operator bool() const { return number_ >= 0; }

 private:
   int number_;
};

// Throws std::system_error with errno and what was being done.
[[noreturn]] void throwErrno( char const * doing );

} // namespace Linux
