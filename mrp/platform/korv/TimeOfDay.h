// Times as people write them.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <string>

namespace Korv {

// Nanoseconds since 1970.
U64 timeOfDay();
// In the machine's time zone, to the millisecond: "2026-03-01 12:00:00.123".
std::string timeOfDayText( U64 nanoseconds );

} // namespace Korv
