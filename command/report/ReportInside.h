// What a participant keeps beside its attributes. `mrp script` shows it, so that two engines, or
// two versions of this one, can be compared in all that they know.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace Mrp {
class MrpSm;
}

namespace Command {

struct ReportInside {
   struct AttributeIndex {
      std::string interface;
      Korv::U8 attributeType;
      std::vector< Korv::U64 > keys; // ascending
   };
   struct LeaveAllTime {
      std::string interface;
      Korv::U8 attributeType;
      Korv::Seconds seconds;
   };
   using Field = std::variant< std::string, Korv::U64, bool >;

   // Both by interface name and type.
   std::vector< AttributeIndex > attributeIndex;
   std::vector< LeaveAllTime > leaveAllTime;
   // By name, in the context's order; none in standby, where there is no context.
   std::vector< std::pair< std::string, Field > > parseContext;
};

ReportInside gatherInside( Mrp::MrpSm const & sm );

} // namespace Command
