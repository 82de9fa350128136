// `mrp run`: a participant on the network interfaces of this machine.
#pragma once

#include "command/run/RunOptions.h"

#include <ostream>
#include <string>

namespace Command {

struct RunArguments {
   RunOptions options;     // of the command line
   std::string configFile; // empty: none
};

// Until SIGTERM or SIGINT, or until nobody reads `out` any more. Warnings go to `err`. The exit
// status; throws CommandError.
int run( RunArguments const & arguments, std::ostream & out, std::ostream & err );

} // namespace Command
