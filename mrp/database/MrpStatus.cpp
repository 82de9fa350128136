#include "mrp/database/MrpStatus.h"

namespace Mrp {

Korv::Ptr< MrpStatus > mrpStatusFactory( Korv::Name const & name ) { return new MrpStatus( name ); }

} // namespace Mrp
