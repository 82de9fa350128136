// printf-style text.
#pragma once

#include <string>

namespace Korv {

[[gnu::format( printf, 1, 2 )]] std::string format( char const * pattern, ... );

} // namespace Korv
