// The values that a user writes on the command line, read with care: each of these throws
// CommandError with what would be right.
#pragma once

#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/vocabulary/Mrp.h"

#include "command/Nanoseconds.h"

#include <string>

namespace Command {

// "mvrp" or "msrp", in any case.
Mrp::MrpApplication applicationArgument( std::string const & text );
Pelk::EthAddr addressArgument( std::string const & text );
// In decimal, or in hexadecimal with 0x.
Korv::U16 ethertypeArgument( std::string const & text );
// A whole number in decimal, of these bounds; `what` says what it would be, as "VLAN".
Korv::U64 numberArgument( std::string const & text, std::string const & what, Korv::U64 lowest,
                          Korv::U64 highest );
// Seconds, with a fraction or without; up to a billion.
Nanoseconds durationArgument( std::string const & text );

// [NAME=]FILE. A name holds no '/', so that "./a=b.pcap" is a file.
struct NamedCapture {
   std::string interface = "eth0";
   std::string path;
};
NamedCapture captureArgument( std::string const & text );

} // namespace Command
