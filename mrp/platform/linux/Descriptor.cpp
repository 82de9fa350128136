#include "mrp/platform/linux/Descriptor.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace Linux {

Descriptor::~Descriptor() {
   if ( number_ >= 0 ) {
      ::close( number_ );
   }
}

void throwErrno( char const * doing ) {
   throw std::system_error( errno, std::generic_category(), doing );
}

} // namespace Linux
