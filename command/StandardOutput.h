// The standard output, and whoever reads it.
#pragma once

#include <csignal>
#include <ostream>

namespace Command {

bool isStandardOutput( std::ostream const & out );
// It goes to another process, through a pipe or a socket.
bool isPiped( std::ostream const & out );

// A write to whoever has stopped reading is to fail for the lifetime of the object, and not to end
// the process, which has things to put in order.
class BrokenPipeIgnored {
 public:
   BrokenPipeIgnored() : before_( std::signal( SIGPIPE, SIG_IGN ) ) {}
   BrokenPipeIgnored( BrokenPipeIgnored const & ) = delete;
   BrokenPipeIgnored & operator=( BrokenPipeIgnored const & ) = delete;
   ~BrokenPipeIgnored() { std::signal( SIGPIPE, before_ ); }

 private:
   void ( *before_ )( int );
};

// Thrown by a command that ends well when its reader has gone.
class ReaderGone {};

} // namespace Command
