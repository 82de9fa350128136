#include "command/replay/Progress.h"

#include <cstdio>
#include <unistd.h>

namespace Command {

namespace {
constexpr std::chrono::milliseconds period( 500 );
}

Progress::Progress()
   : isTerminal_( isatty( STDERR_FILENO ) == 1 ), next_( Clock::now() + period ) {}

Progress::~Progress() {
   if ( isShown_ ) {
      std::fputs( "\r       \r", stderr );
   }
}

void Progress::doneIs( double done ) {
   if ( !isTerminal_ || Clock::now() < next_ ) {
      return;
   }
   next_ = Clock::now() + period;
   isShown_ = true;
   std::fprintf( stderr, "\r%3.0f %% ", done * 100 );
}

} // namespace Command
