// The three logs that an operator sees. Each is one for the process, also where a library and its
// user hide their symbols from each other: hence their visibility.
#pragma once

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/korv/Log.h"

#include <concepts>
#include <string>

namespace Mrp {

// A text made by Korv::format, for one of: values that do not match a packet's bytes, an
// unidentified attribute type, a join that the application discarded.
[[gnu::visibility( "default" )]] inline constinit Korv::LogHandle
   MRP_ERROR( "MRP_ERROR", 6, "%s", "MRP error occurred", Korv::NoActionRequired, 0.0, 1.0, 0 );

// By the registrar, from its states In and Mt.
[[gnu::visibility( "default" )]] inline constinit Korv::LogHandle
   MRP_JOIN( "MRP_JOIN", 6, "MRP Join received on %s, attrType: %s, key: %s, state: %s, event: %s",
             "MRP Join was received on an interface", Korv::NoActionRequired, 0.0, 1.0, 0 );

// By the registrar; the first field is "notified" or "received".
[[gnu::visibility( "default" )]] inline constinit Korv::LogHandle
   MRP_LV( "MRP_LV", 6, "MRP Lv %s on %s, attrType: %s, key: %s, state: %s, event: %s",
           "MRP Lv was handled on an interface", Korv::NoActionRequired, 0.0, 1.0, 0 );

// For a handle that is okToLog: one string for each "%s" of its format.
template < std::same_as< std::string >... Field >
void mrpLog( Korv::LogHandle & handle, Field const &... field ) {
   handle.log( Korv::format( handle.format(), field.c_str()... ) );
}

// An attribute's key as the logs show it: in decimal and signed, whatever the name says.
std::string hexStr( Korv::U64 key );

} // namespace Mrp
