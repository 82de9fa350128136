// `mrp show`: what participants publish on their mirror streams.
#pragma once

#include "command/show/ShowFilter.h"

#include <ostream>
#include <string>

namespace Command {

struct ShowOptions {
   std::string socket; // empty: those of the default folder
   ShowFilter filter;
   bool watch = false;
   bool json = false;
   bool metrics = false;
};

// Watching lasts until SIGINT, SIGTERM, q, or until nobody reads `out` any more. Warnings go to
// `err`. The exit status; throws CommandError.
int show( ShowOptions const & options, std::ostream & out, std::ostream & err );

} // namespace Command
