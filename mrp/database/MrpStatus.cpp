#include "mrp/database/MrpStatus.h"

namespace Mrp {

Korv::Ptr< MrpStatus > mrpStatusFactory( Korv::Name const & name ) {
   return Korv::newValidPtr< MrpStatus >( name );
}

} // namespace Mrp
