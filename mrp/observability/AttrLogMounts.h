// What a participant's process mirrors: the roots of which each new stream gets adapters.
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/platform/attrlog/Adapter.h"
#include "mrp/receive/MrpCounters.h"
#include "mrp/receive/MrpParseContext.h"
#include "mrp/topology/MrpConfig.h"

#include <functional>
#include <memory>
#include <vector>

namespace Mrp {

// Owned by the agent; keeps the entities alive. Mount each type once: a stream has one root of a
// type.
class AttrLogMounts {
 public:
   using Adapters = std::vector< std::unique_ptr< Korv::NboAttrLog::Adapter > >;

   void statusIs( Korv::Ptr< MrpStatus > const & status );
   void configIs( Korv::Ptr< MrpConfig > const & config );
   void countersIs( Korv::Ptr< MrpCounters > const & counters );
   void parseContextIs( Korv::Ptr< MrpParseContext > const & parseContext );

   // Adapters of all of them on the stream, from the start; they go before it.
   Adapters mount( Korv::NboAttrLog::Output & output ) const;

 private:
   std::vector< std::function< std::unique_ptr< Korv::NboAttrLog::Adapter >() > > roots_;
};

} // namespace Mrp
