// Times are doubles, and 0.1 + 0.2 is not 0.3. What is computed to fall on one and the same time
// must compare as that time, or the order of events at it would depend on how it was computed.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cmath>

namespace Dovr {

// Two times less than this apart are one.
inline constexpr Korv::Seconds microsecond = 1e-6;

// The time as a whole number of microseconds: the double that a person would write for it.
inline Korv::Seconds toMicrosecond( Korv::Seconds time ) { return std::round( time * 1e6 ) / 1e6; }

} // namespace Dovr
