// Joins in-memory devices: a frame sent by one reaches all others.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/memory/Device.h"

#include <functional>
#include <memory>
#include <vector>

namespace Memory {

// Each frame arrives in a notification of its own, input from outside as it is from a real wire:
// after the delay, behind the timers that are due at that time. Frames of one time arrive in the
// order in which they were sent, over all wires of the clock. A device that has left its network
// or has no Pam open hears nothing.
//
// Owned by whoever sets the scene. A wire that goes, outside of all arrivals, takes the frames in
// flight with it.
class Wire {
 public:
   explicit Wire( Korv::Ptr< Korv::Clock > clock = Korv::activityManager().clock() );
   Wire( Wire const & ) = delete;
   Wire & operator=( Wire const & ) = delete;
   ~Wire();

   // Plugs the device in.
   void join( Korv::Ptr< Device > device );
   void leave( Device & device );

   Korv::Seconds delay() const { return delay_; }
   void delayIs( Korv::Seconds delay ) { delay_ = delay; }

   // What becomes of one frame: how many times it arrives, and how much later than the delay says.
   struct Fate {
      Korv::U32 copies = 1;
      Korv::Seconds lateness = 0;
   };
   // Asked for each frame sent; `from` is the sender.
   using Judge = std::function< Fate( Device const & from, FrameBytes frame ) >;
   void judgeIs( Judge judge ) { judge_ = std::move( judge ); }

 private:
   class Flight;
   struct End {
      Korv::Ptr< Device > device;
      Korv::U32 listener;
   };

   void handleSent( Device & from, FrameBytes frame );
   void launch( Device & from, FrameBytes frame, Korv::Seconds lateness );
   void handleArrived( Flight & flight );

   Korv::Ptr< Korv::Clock > clock_;
   Korv::Seconds delay_ = 0;
   Judge judge_;
   std::vector< End > ends_;
   std::vector< std::unique_ptr< Flight > > flights_; // of all frames, those idle included
   std::vector< Flight * > idle_;
};

} // namespace Memory
