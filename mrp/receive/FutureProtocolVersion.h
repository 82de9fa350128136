#pragma once

namespace Mrp {

// Whether the MRPDU being parsed is of a higher version than ours: its unknown messages are then
// skipped. One for the process and not for a participant, since one frame is in a parser at a
// time: set by parseMrpdu, read by parseMessage, cleared by handleMrpdu when the frame is done.
extern bool futureProtocolVersion;

} // namespace Mrp
