// Attributes of MrpConfig by their names in a script.
#pragma once

#include "command/script/Script.h"
#include "command/script/ScriptContext.h"

namespace Command {

// The script's `config`: each member an attribute, the two maps with their entries.
std::vector< Script::Setting > readConfig( ScriptContext & context, ScriptNode const & config );

// One change: of the attribute, or for the two maps of its entry for `intf`; null deletes that.
Script::Setting readConfigStep( ScriptContext & context, ScriptNode const & step );

} // namespace Command
