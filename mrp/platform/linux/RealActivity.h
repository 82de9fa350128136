// Real time.
#pragma once

#include "mrp/platform/korv/Clock.h"

namespace Linux {

using Korv::Seconds;

// The process's activity manager for its lifetime, on the kernel's monotonic clock, whose seconds
// are the time.
//
// One round of the loop takes the time, fires what is due by then, and waits for the next timer.
class RealActivity : public Korv::ActivityManager {
 public:
   RealActivity();

   // Runs for so long, or until stopped.
   void runFor( Seconds duration );
   // From within a notification: the loop ends with it.
   void doStop() { stopping_ = true; }

 private:
   static Seconds monotonicTime();
   // Sleeps until the time or until there is something to do before.
   void waitUntil( Seconds time );

   bool stopping_ = false;
};

} // namespace Linux
