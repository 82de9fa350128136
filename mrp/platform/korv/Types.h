// The scalar names that every room uses.
#pragma once

#include <cstdint>
#include <limits>

namespace Korv {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using S16 = std::int16_t;
using S32 = std::int32_t;

// Seconds since an arbitrary fixed start, or a duration. A time held in a record is absolute; a
// time handed to a `doSchedule...` operation is a duration from now.
using Seconds = double;

// A timer armed for this time never fires.
inline constexpr Seconds never = std::numeric_limits< Seconds >::max();

} // namespace Korv
