// What a participant on the virtual clock has been through, and where it stands now.
#pragma once

#include "command/replay/Participant.h"
#include "command/report/Report.h"

namespace Command {

Report gatherReport( Participant const & participant );

} // namespace Command
