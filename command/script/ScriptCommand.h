// `mrp script`: a scenario from a file on a participant of its own.
#pragma once

#include <ostream>
#include <string>

namespace Command {

struct ScriptOptions {
   std::string path;
   std::string outDirectory; // empty: none
   bool json = false;
};

// The result goes to `out`, warnings go to `err`. The exit status; throws CommandError.
//
// A broken invariant of the engine ends the process, with status 1, once the result up to there is
// written.
int script( ScriptOptions const & options, std::ostream & out, std::ostream & err );

} // namespace Command
