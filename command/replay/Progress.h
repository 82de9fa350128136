// How far long work has come, on a line that is written over: for people at a terminal only, and
// only once the work has lasted a while.
#pragma once

#include <chrono>

namespace Command {

class Progress {
 public:
   Progress();
   Progress( Progress const & ) = delete;
   Progress & operator=( Progress const & ) = delete;
   // Takes the line away.
   ~Progress();

   // From 0 to 1. Cheap enough to be called often.
   void doneIs( double done );

 private:
   using Clock = std::chrono::steady_clock;

   bool isTerminal_;
   bool isShown_ = false;
   Clock::time_point next_;
};

} // namespace Command
