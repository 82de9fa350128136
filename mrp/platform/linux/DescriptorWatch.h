// A descriptor on which input from outside is awaited.
#pragma once

#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/linux/RealActivity.h"

#include <functional>

namespace Linux {

// Calls back from the loop whenever the descriptor is ready, for as long as it is: in its turn, one
// ready descriptor a round of the loop. Calls for a bounded piece of work: what remains is found
// ready in the next round, behind the timers that are due by then.
//
// Owned by whoever waits; it may end inside any callback, its own included. The descriptor is the
// owner's too and is closed after the watch. A descriptor has one watch at a time.
class DescriptorWatch {
 public:
   // What to wait for, and what is ready: a sum of these.
   enum Event : Korv::U32 {
      reading = 1,
      writing = 2,
      failure = 4, // an error or the other end gone: told of without being asked for
   };
   // A failure stays ready until the owner takes the error from the descriptor or ends the watch.
   using Callback = std::function< void( Korv::U32 ready ) >;

   // How often: as long as it is ready, or at each arrival of something new.
   enum class Mode { whileReady, atArrival };

   // Throws std::system_error where a descriptor cannot be waited for: a plain file.
   DescriptorWatch( RealActivity & activity, int descriptor, Korv::U32 events, Callback callback );
   DescriptorWatch( DescriptorWatch const & ) = delete;
   DescriptorWatch & operator=( DescriptorWatch const & ) = delete;
   ~DescriptorWatch();

   Korv::U32 events() const { return events_; }
   void eventsIs( Korv::U32 events );
   Mode mode() const { return mode_; }
   void modeIs( Mode mode );

 private:
   friend class RealActivity;
   // What the kernel points at. A callback under way keeps it, so that the watch may go.
   struct Waiting : Korv::PtrInterface {
      Callback callback;
   };
   static void dispatch( void * waiting, Korv::U32 epollEvents );
   void control( int operation );

   RealActivity & activity_;
   int descriptor_;
   Korv::U32 events_;
   Mode mode_ = Mode::whileReady;
   Korv::Ptr< Waiting > waiting_{ new Waiting };
};

} // namespace Linux
