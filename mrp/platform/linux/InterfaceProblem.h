// Why an interface cannot be had.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/pelk/IntfId.h"

#include <string>

namespace Linux {

struct InterfaceProblem {
   enum class Kind : Korv::U8 { none, noSuchInterface, noPermission, notEthernet, other };

   Kind kind = Kind::none;
   // For people, without the interface's name: "no permission to open packet sockets (it takes
   // CAP_NET_RAW)".
   std::string text;

   // True if there is one.
   explicit operator bool() const { return kind != Kind::none; }
};

// Tries to open the interface as a participant would, and closes it again. For a command that
// wants to say what is wrong before it starts. An interface that is not there yet may be followed
// all the same (Host.h).
InterfaceProblem interfaceProblem( Pelk::IntfId const & intfId );

} // namespace Linux
