// A script on a participant of its own.
#pragma once

#include "command/replay/Participant.h"
#include "command/script/Script.h"

namespace Command {

// The settings of the script's participant.
ParticipantSettings settingsOf( Script const & script );

// From time 0 to the script's end. Throws CommandError for a step that cannot be done and for a run
// that has too much to tell; what the engine throws passes through.
void runScript( Script const & script, Participant & participant );

} // namespace Command
