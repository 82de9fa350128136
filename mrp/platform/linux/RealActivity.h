// Real time, and input from outside: the loop of a process on Linux.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/linux/Descriptor.h"

namespace Linux {

using Korv::Seconds;

// The process's activity manager for its lifetime, on the kernel's monotonic clock, whose seconds
// are the time. What comes from outside comes through descriptors (DescriptorWatch.h), signals
// included (SignalWatch.h); whoever watches one goes before the activity.
//
// One round of the loop takes the time, fires the timers that are due by then, in the clock's
// order and each at the time that it was due for unless that is long past, and gives one ready
// descriptor its turn. So the wheel's tick is ahead of review timers, and these of input, whatever
// storm is blowing; and descriptors take turns. Timers that take longer than a turn (20 ms) leave
// the rest of them for the next round: a leave timer reads a frame, and in a storm thousands of
// them would keep everybody else waiting. With nothing to do it sleeps until the next timer
// or input, whichever comes first, and wakes for nothing else: timers that are not due cost
// nothing, however many they are.
//
// What a notification throws leaves the loop. All that was pending still is, and the loop can be
// entered again.
class RealActivity : public Korv::ActivityManager {
 public:
   // Throws std::system_error if the process has no descriptors left.
   RealActivity();

   // Runs until stopped.
   void run() { runUntil( Korv::never ); }
   // Runs for so long, or until stopped. At least one round.
   void runFor( Seconds duration ) { runUntil( monotonicTime() + duration ); }
   // From within a notification: the loop ends with it.
   void doStop() { stopping_ = true; }

   bool isTurnOver() const override { return monotonicTime() >= turnEnd_; }

   // How often the loop has been woken from sleep, and the kernel's timer set: for those who look
   // after idle processes.
   Korv::U64 wakeUps() const { return wakeUps_; }
   Korv::U64 timerSettings() const { return timerSettings_; }

 private:
   friend class DescriptorWatch;

   static Seconds monotonicTime();
   void runUntil( Seconds end );
   void fireTimers( Seconds time );
   // Waits for input until the time, and gives what comes its turn.
   void handleInput( Seconds until );
   void armTimer( Seconds time );

   Descriptor epoll_;
   Descriptor timer_;
   Seconds turnEnd_ = Korv::never;  // of the timers of this round
   Seconds armedFor_ = Korv::never; // what timer_ is set for; never, once it has gone off
   Korv::U64 wakeUps_ = 0;
   Korv::U64 timerSettings_ = 0;
   bool running_ = false;
   bool stopping_ = false;
};

} // namespace Linux
