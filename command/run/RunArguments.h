// The values that `mrp run` reads, beside those that all commands read (Arguments.h). Each throws
// CommandError with what would be right.
#pragma once

#include "command/run/RunOptions.h"

namespace Command {

// Numbers and ranges: "10,20-29".
std::set< U16 > vlansArgument( std::string const & text );
// Eight bytes: "02:00:00:00:00:01:00:07".
U64 streamIdArgument( std::string const & text );

// "stream=02:00:00:00:00:01:00:07,frame-size=100" taken apart.
OptionParts partsOf( std::string const & text );
TalkerOption talkerArgument( OptionParts const & parts );
DomainOption domainArgument( OptionParts const & parts );

} // namespace Command
