// Where the mirror stream of a participant is found, by those who offer it and those who read it.
#pragma once

#include "mrp/platform/linux/StreamSocket.h"
#include "mrp/vocabulary/Mrp.h"

#include <string>

namespace Command {

// Where streams are when nothing else is said: /run/mrp for root, $XDG_RUNTIME_DIR/mrp for others.
// Empty for others without that variable.
std::string defaultStreamFolder();
// The socket in it: mvrp.sock or msrp.sock. Empty without a folder.
std::string defaultStreamAddress( Mrp::MrpApplication application );

// A path, unix:PATH, tcp:PORT or tcp:HOST:PORT. Throws CommandError for anything else.
Linux::StreamAddress streamAddressArgument( std::string const & text );

} // namespace Command
