// The mirror stream of `mrp run`.
#pragma once

#include "mrp/platform/linux/AttrLogServer.h"

#include "command/run/RunSettings.h"

#include <memory>
#include <ostream>

namespace Command {

// Offers the stream for its lifetime, and lets the engine's commits look at how full it is. Made
// before the participant leaves standby; gone before the activity.
class RunStream {
 public:
   // Where the settings say, or at the usual place. Throws CommandError if a place that was asked
   // for cannot be had. Without the usual one there is a line on `err` and no stream: null, as when
   // none is wanted.
   static std::unique_ptr< RunStream >
   offered( RunSettings const & settings, Linux::RealActivity & activity,
            Korv::Name const & connection, Linux::AttrLogServer::Mount mount, std::ostream & err );

   // Throws std::system_error or Korv::RangeException.
   RunStream( Linux::RealActivity & activity, Linux::StreamAddress const & address,
              Korv::Name connection, Linux::AttrLogServer::Mount mount );
   RunStream( RunStream const & ) = delete;
   RunStream & operator=( RunStream const & ) = delete;
   ~RunStream();

 private:
   Korv::Name connection_;
   Linux::AttrLogServer server_;
};

} // namespace Command
