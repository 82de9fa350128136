// The exception of a value outside its range. The library throws no other; it catches none.
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
