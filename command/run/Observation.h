// What `mrp run` tells beside its lines: logs, traces and the ring buffer.
#pragma once

#include "mrp/platform/sornlog/RingFile.h"

#include "command/run/RunSettings.h"

#include <optional>

namespace Command {

// All of it as the settings say, for the object's lifetime; levels of traces stay on.
class Observation {
 public:
   // Throws CommandError.
   explicit Observation( RunSettings const & settings );
   Observation( Observation const & ) = delete;
   Observation & operator=( Observation const & ) = delete;
   ~Observation();

   // Off if any level is on; else on, with these levels, or if they are empty those of MRP_TRACE,
   // or else all. The levels that are on now, empty for none. Throws CommandError, and then nothing
   // has changed.
   static std::string switchTraces( std::string const & levels );

 private:
   std::optional< Sornlog::RingFile > ring_;
};

} // namespace Command
