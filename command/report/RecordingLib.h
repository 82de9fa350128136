// The application of a participant that only listens: it writes down every indication, and refuses
// the joins that it is told to.
#pragma once

#include "mrp/frame/MrpLib.h"

#include "command/report/Timeline.h"

#include <set>

namespace Command {

// What the library, within an indication, says of it.
Happening indicationOf( Mrp::MrpLib const & lib, Happening::Kind kind,
                        Mrp::MrpParameters const & indication );

class RecordingLib : public Mrp::MrpLib {
 public:
   // The timeline is the owner's and outlives it.
   explicit RecordingLib( Timeline & timeline ) : timeline_( timeline ) {}

   // From now on joins of the attribute are refused.
   void refuse( Mrp::MrpAttribute const & attribute ) { refused_.insert( attribute ); }

   bool mrpJoinIndication( Mrp::MrpParameters const & indication ) override;
   void mrpLeaveIndication( Mrp::MrpParameters const & indication ) override;

 private:
   Timeline & timeline_;
   std::set< Mrp::MrpAttribute > refused_;
};

} // namespace Command
