// What happened to a participant, in the order in which it happened.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/pelk/IntfId.h"

#include <vector>

namespace Command {

struct Happening {
   enum class Kind : Korv::U8 {
      heard, // a frame that passed the filter
      said,  // a frame sent
      join,  // an indication
      leave
   };

   Kind kind;
   Korv::Seconds time;
   Pelk::IntfId intfId;
   std::vector< Korv::U8 > bytes; // of the frame, or of the Rx record at the indication
   // Of an indication.
   Korv::U8 attributeType = 0;
   Korv::U8 attributeEvent = 0;
   Korv::U64 attributeKey = 0;
};

using Timeline = std::vector< Happening >;

} // namespace Command
