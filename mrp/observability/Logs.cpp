#include "mrp/observability/Logs.h"

namespace Mrp {

std::string hexStr( Korv::U64 key ) {
   return Korv::format( "%lld", static_cast< long long >( key ) );
}

} // namespace Mrp
