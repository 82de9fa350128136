// `mrp replay`: the frames of captures on a participant of its own.
#pragma once

#include "command/Arguments.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Command {

struct ReplayOptions {
   Mrp::MrpApplication application = Mrp::InvalidApplication;
   // Without them those that IEEE 802.1Q gives the application.
   std::optional< Pelk::EthAddr > address;
   std::optional< Korv::U16 > ethertype;
   Nanoseconds tail = nanosecondsPerSecond;
   std::string outDirectory; // empty: none
   bool json = false;
   std::vector< NamedCapture > captures; // one an interface, at least one
};

// The result goes to `out`, warnings go to `err`. The exit status; throws CommandError.
int replay( ReplayOptions const & options, std::ostream & out, std::ostream & err );

} // namespace Command
