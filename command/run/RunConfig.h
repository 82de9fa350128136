// The file of `mrp run --config`.
#pragma once

#include "command/run/RunOptions.h"

namespace Command {

// TOML: each option under its own name, `interfaces` too; one that may be given several times as
// one value or an array of them, one that has parts as a table or an array of tables. Throws
// CommandError, with the file and the line where they help.
RunOptions readRunConfig( std::string const & path );

} // namespace Command
