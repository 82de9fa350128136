// Signals as input from outside: a callback in its turn, in place of a handler that interrupts.
#pragma once

#include "mrp/platform/linux/DescriptorWatch.h"

#include <csignal>
#include <functional>
#include <initializer_list>

namespace Linux {

// Holds its signals back from the process for its lifetime, and hands each to the callback from
// the loop. Equal signals that arrive together are one. A signal that is pending at the end takes
// its ordinary effect then.
//
// Owned by whoever waits; it may end inside any callback. A signal has one watch at a time. Made
// before the process starts threads, since each thread holds signals for itself; and what is
// started by fork and exec inherits the held signals.
class SignalWatch {
 public:
   using Callback = std::function< void( int signal ) >;

   SignalWatch( RealActivity & activity, std::initializer_list< int > signals, Callback callback );
   SignalWatch( SignalWatch const & ) = delete;
   SignalWatch & operator=( SignalWatch const & ) = delete;
   ~SignalWatch();

 private:
   static void handleReadable( int descriptor, Callback const & callback );

   sigset_t held_; // by this watch: those that were not held before
   Descriptor descriptor_;
   DescriptorWatch watch_;
};

} // namespace Linux
