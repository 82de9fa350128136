// A frame in words, for people: `VLAN LeaveAll, 10-13 JoinIn, 100 Lv`.
//
// This reads MRPDUs on its own: it shows what stands in the frame and not what the participant
// makes of it, and it says where and why it can read no further. Any bytes will do.
#pragma once

#include "mrp/vocabulary/Mrp.h"

#include <span>
#include <string>

namespace Command {

// The frame from its destination address on, of that application.
std::string frameWords( Mrp::MrpApplication application, std::span< Korv::U8 const > frame );

} // namespace Command
