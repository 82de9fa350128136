// What `mrp run` is to do: all options, checked against each other, with the defaults in place.
#pragma once

#include "mrp/platform/pelk/IntfId.h"

#include "command/run/RunOptions.h"
#include "command/run/StreamLib.h"

namespace Command {

struct RunSettings {
   Mrp::MrpApplication application;
   Pelk::EthAddr address;
   U16 ethertype;
   std::set< U16 > vlans;
   bool bridge;
   StreamPlan streams;
   Korv::Seconds leaveTime;
   Korv::Seconds leaveAllTime;
   bool json;
   std::vector< Pelk::IntfId > interfaces; // at least one, each once
   LogTarget log;
   std::string trace;                             // empty: as it is
   std::string ring;                              // empty: none
   std::optional< std::string > socket;           // without it the usual place
   std::optional< Linux::StreamAddress > metrics; // without it none
};

// Throws CommandError for what cannot be.
RunSettings runSettings( RunOptions const & options );

// What can be, but is outside of what IEEE 802.1Q calls for; a line each.
std::vector< std::string > warningsOf( RunSettings const & settings );

} // namespace Command
