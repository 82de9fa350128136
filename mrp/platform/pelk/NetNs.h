// The name of the default network namespace.
#pragma once

namespace Pelk {

inline constexpr char const * DEFAULT_NS = "default";

} // namespace Pelk
