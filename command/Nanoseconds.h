// The time of captures.
#pragma once

#include <cstdint>

namespace Command {

// Since 1970, which reaches until 2262, or a distance.
using Nanoseconds = std::int64_t;
inline constexpr Nanoseconds nanosecondsPerSecond = 1'000'000'000;

} // namespace Command
