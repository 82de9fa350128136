#include "mrp/platform/korv/RangeException.h"

namespace Korv {

void throwRangeException( std::string const & text ) { throw RangeException( text ); }

} // namespace Korv
