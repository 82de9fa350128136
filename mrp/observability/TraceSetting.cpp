#include "mrp/observability/TraceSetting.h"

#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/TraceLevels.h"

#include <array>
#include <cstdlib>

namespace Mrp {

void traceLevelsAre( std::string_view text ) {
   std::array const handles{ &mrpTrace };
   Korv::traceLevelsAre( text, handles );
}

void traceLevelsOfEnvironment() {
   char const * const text = std::getenv( "MRP_TRACE" );
   if ( !text || !*text ) {
      return;
   }
   try {
      traceLevelsAre( text );
   } catch ( Korv::RangeException const & error ) {
      Korv::throwRangeException( std::string( "MRP_TRACE: " ) + error.what() );
   }
}

} // namespace Mrp
