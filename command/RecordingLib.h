// The application of a participant that only listens: it writes down every indication.
#pragma once

#include "mrp/frame/MrpLib.h"

#include "command/Timeline.h"

namespace Command {

// The timeline is the owner's and outlives it.
class RecordingLib : public Mrp::MrpLib {
 public:
   explicit RecordingLib( Timeline & timeline ) : timeline_( timeline ) {}

   bool mrpJoinIndication( Mrp::MrpParameters const & indication ) override;
   void mrpLeaveIndication( Mrp::MrpParameters const & indication ) override;

 private:
   void record( Happening::Kind kind, Mrp::MrpParameters const & indication );

   Timeline & timeline_;
};

} // namespace Command
