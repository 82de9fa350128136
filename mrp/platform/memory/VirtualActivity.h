// Time that moves when it is told to: for tests, replay, scripts and simulation.
#pragma once

#include "mrp/platform/korv/Clock.h"

namespace Memory {

using Korv::Seconds;

// The process's activity manager for its lifetime. Time starts at 0. Nothing else moves it and
// nothing waits for it, so that the same calls give the same run, always.
//
// Called from outside of all timers only.
class VirtualActivity : public Korv::ActivityManager {
 public:
   // Fires all that is due at or before the time, each timer with the clock at its own time, and
   // then stands at the time.
   void advanceTo( Seconds time );
   void advanceBy( Seconds duration ) { advanceTo( clock()->now() + duration ); }

   // The time of the earliest timer, or never.
   Seconds nextTime() const { return clock()->nextTime(); }

 private:
   bool advancing_ = false;
};

} // namespace Memory
