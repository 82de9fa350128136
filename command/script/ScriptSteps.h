// The operations of a script's steps.
#pragma once

#include "command/script/Script.h"
#include "command/script/ScriptContext.h"

namespace Command {

// What the step does when its time has come.
Script::Action readOperation( ScriptContext & context, ScriptNode const & step );

} // namespace Command
