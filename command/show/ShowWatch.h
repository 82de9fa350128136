// `mrp show --watch`: shows anew whatever changes.
#pragma once

#include "command/show/ShowCommand.h"
#include "command/show/ShowSource.h"

#include <list>

namespace Command {

// Draws a picture in a terminal; elsewhere it prints a text or, with `json`, a line. It does so at
// each change, ten times a second at most. Gives the exit status.
int watch( ShowOptions const & options, Linux::RealActivity & activity,
           std::list< ShowSource > & sources, std::ostream & out );

} // namespace Command
