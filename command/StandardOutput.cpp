#include "command/StandardOutput.h"

#include <iostream>
#include <sys/stat.h>
#include <unistd.h>

namespace Command {

bool isStandardOutput( std::ostream const & out ) { return &out == &std::cout; }

bool isPiped( std::ostream const & out ) {
   struct stat kind {};
   return isStandardOutput( out ) && ::fstat( STDOUT_FILENO, &kind ) == 0 &&
          ( S_ISFIFO( kind.st_mode ) || S_ISSOCK( kind.st_mode ) );
}

} // namespace Command
