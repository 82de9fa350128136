// Traces as a user switches them.
#pragma once

#include <string_view>

namespace Mrp {

// The library's trace handles have these levels from now on: "Mrp/4-8". Throws RangeException with
// what would be right.
void traceLevelsAre( std::string_view text );

// The same with the environment variable MRP_TRACE, if it is set and not empty.
void traceLevelsOfEnvironment();

} // namespace Mrp
