// The exception of a value outside its range. The engine throws no other
// and catches none; on Linux, what the library stands on can refuse itself by std::system_error.
#pragma once

#include <stdexcept>
#include <string>

namespace Korv {

class RangeException : public std::range_error {
 public:
   using std::range_error::range_error;
};

[[noreturn]] void throwRangeException( std::string const & text );

} // namespace Korv
