#include "mrp/platform/attrlog/SocketOutSm.h"

namespace Korv::NboAttrLog {

Ptr< SocketOutSm > Registry::socketOutSm( Name const & connection ) const {
   auto const * const found = outputs_.find( connection );
   return found ? *found : nullptr;
}

void Registry::socketOutSmIs( Name const & connection, Ptr< SocketOutSm > const & out ) {
   outputs_.insertOrAssign( connection, out );
}

Registry & top() {
   static Registry registry;
   return registry;
}

} // namespace Korv::NboAttrLog
