// Attribute values as a script has them: the fields of each kind by their names, under the name of
// the kind.
//
//    "value": {"vlanVector": {"vlanId": 10}}
//
// A field that is missing is 0.
#pragma once

#include "command/script/Script.h"
#include "command/script/ScriptNode.h"

#include <functional>

namespace Mrp {
class MrpLib;
}

namespace Command {

// Loads the Tx field of each kind named.
std::function< void( Mrp::MrpLib & ) > readTxFields( ScriptNode const & value );

// What the database keeps of an attribute of the type: the one kind named, or the bytes themselves
// in hexadecimal.
std::vector< Korv::U8 > readStoredValue( ScriptNode const & value, Mrp::MrpApplication application,
                                         Korv::U8 attributeType );

} // namespace Command
