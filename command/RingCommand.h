// `mrp ring`: what the ring buffer of a process holds.
#pragma once

#include <ostream>
#include <string>

namespace Command {

struct RingOptions {
   unsigned levels = ~0u; // one bit a level
   bool json = false;
   std::string path;
};

// "2,4-8", as a bit for each. Throws CommandError.
unsigned levelsArgument( std::string const & text );

// The records go to `out`, remarks to `err`. The exit status, 1 if there are records in the file
// that no process has written; throws CommandError.
int ring( RingOptions const & options, std::ostream & out, std::ostream & err );

} // namespace Command
