// `mrp show --watch`: shows anew whatever changes.
#pragma once

#include "command/show/ShowCommand.h"
#include "command/show/ShowSource.h"

#include <list>

namespace Command {

// In a terminal a picture, else a text or, with `json`, a line for each change; ten times a second
// at most. The exit status.
int watch( ShowOptions const & options, Linux::RealActivity & activity,
           std::list< ShowSource > & sources, std::ostream & out );

} // namespace Command
