// The command line of `mrp`: reads the arguments, runs the subcommand, and turns what went wrong
// into one line and an exit status.
#pragma once

#include <ostream>

namespace Command {

// 0: done. 1: the subcommand has found a problem. 2: the arguments or the files are wrong.
int runCommandLine( int argc, char const * const * argv, std::ostream & out, std::ostream & err );

} // namespace Command
