#include "command/run/RunOutput.h"

#include "command/StandardOutput.h"

#include <climits>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Command {

namespace {

constexpr Korv::Seconds moment = 0.01;

// A terminal with room for a byte is ready, and has a longer write wait; of a pipe another process
// may take the room. So they are opened once more: otherwise not to wait would be asked for of all
// who have them. Of a socket, which cannot be opened, there is none.
Linux::Descriptor unwaiting( std::ostream const & out ) {
   bool const isTerminal = isStandardOutput( out ) && ::isatty( STDOUT_FILENO ) == 1;
   int const flags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
   return Linux::Descriptor( isTerminal || isPiped( out ) ? ::open( "/proc/self/fd/1", flags )
                                                          : -1 );
}

} // namespace

RunOutput::RunOutput( std::ostream & out, Notice notice, std::function< void() > closed )
   : out_( out ), notice_( std::move( notice ) ), closed_( std::move( closed ) ),
     unwaiting_( unwaiting( out ) ),
     descriptor_( !unwaiting_ && isPiped( out ) ? STDOUT_FILENO : unwaiting_.number() ) {}

void RunOutput::print( std::string const & text ) {
   if ( !out_ ) {
      return fail();
   }
   if ( descriptor_ < 0 ) {
      out_ << text << std::flush;
      return out_ ? void() : fail();
   }
   if ( leftOut_ > 0 || waiting_.size() >= bound ) {
      leftOut_ += static_cast< std::size_t >( std::ranges::count( text, '\n' ) );
      return;
   }
   bool const isFirst = waiting_.empty();
   waiting_ += text;
   if ( isFirst ) {
      write();
   }
}

void RunOutput::write() {
   std::size_t written = 0;
   while ( written < waiting_.size() && hasRoom() ) {
      // No more than what is ready takes without waiting, also where it could not be opened anew.
      std::size_t const piece = std::min< std::size_t >( waiting_.size() - written, PIPE_BUF );
      auto const got = ::write( descriptor_, waiting_.data() + written, piece );
      if ( got < 0 ) {
         if ( errno == EAGAIN || errno == EINTR ) {
            break;
         }
         return fail();
      }
      written += static_cast< std::size_t >( got );
      if ( leftOut_ > 0 && waiting_.size() - written <= bound / 2 ) {
         waiting_ += notice_( std::exchange( leftOut_, 0 ) );
      }
   }
   waiting_.erase( 0, written );
   if ( !waiting_.empty() ) {
      again_.doRunIn( moment );
   }
}

// What has failed is ready too: the write says so.
bool RunOutput::hasRoom() const {
   pollfd look{ descriptor_, POLLOUT, 0 };
   return ::poll( &look, 1, 0 ) > 0;
}

void RunOutput::fail() {
   waiting_.clear();
   out_.setstate( std::ios::badbit );
   if ( closed_ ) {
      closed_();
   }
}

} // namespace Command
