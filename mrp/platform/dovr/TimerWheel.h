// Many timers at the resolution of a tick.
#pragma once

#include "mrp/platform/korv/Clock.h"

#include <vector>

namespace Dovr {

using Korv::Seconds;
using Korv::U32;
using Korv::U64;

// Counts whole ticks from its making. A timer asked for time t fires at the first tick at or after
// t that has not been processed; one armed during a tick for that tick or earlier fires at the
// next. Times are compared in ticks with a tolerance of a microsecond, so that now + 0.1 on a tick
// of 0.1 seconds is the next tick and not the one after. Timers of one tick fire in the order of
// their latest arming, and with one `now`.
//
// A tick of so many timers that others wait for too long is broken off: the rest of it fires, in
// its order, when the loop has come round.
//
// It wakes up only for ticks that hold timers. Arming and disarming cost a search in the row of
// such ticks and allocate nothing.
//
// Shared by its owner and its timers. A timer may arm, disarm or destroy any timer, itself and
// those of the running tick included, and may let go of the wheel.
//
//  1. buckets_ stands in descending order of ticks, so that the next one is at its end; no bucket
//     is empty.
//  2. While no tick is being processed, the wheel's one timer on the clock is armed for the next
//     bucket's tick, or for the time at which that was broken off, or not at all.
class TimerWheel : public Korv::PtrInterface {
 public:
   class Reactor {
    public:
      explicit Reactor( Korv::Ptr< TimerWheel > wheel ) : wheel_( std::move( wheel ) ) {}
      Reactor( Reactor const & ) = delete;
      Reactor & operator=( Reactor const & ) = delete;
      virtual ~Reactor() { timeMinIs( Korv::never ); }

      virtual void onTime() {}

      Korv::Ptr< TimerWheel > const & wheel() const { return wheel_; }

      // One onTime at or after the time; `never`, or a time beyond all ticks, takes it back.
      // Asking for the time already held changes nothing, the place among the timers of its tick
      // included. Once fired, a timer holds `never`.
      Seconds timeMin() const { return timeMin_; }
      void timeMinIs( Seconds time );

    private:
      friend class TimerWheel;
      Korv::Ptr< TimerWheel > wheel_;
      Seconds timeMin_ = Korv::never;
      U64 tick_ = 0; // 0: in no bucket
      Reactor * previous_ = nullptr;
      Reactor * next_ = nullptr;
   };

   // Stands for the framework's activity, of which there is none here.
   using Activity = std::nullptr_t;

   // `defaultBucketSize` is the number of different ticks for which there is room from the start.
   // There is no horizon, so `initialMaxTicks` bounds nothing, and timers of a tick fire in order
   // whether `preserveOrder` asks for it or not.
   TimerWheel( Activity korvFwkActivity, Korv::Ptr< Korv::Clock > systemClock, U32 tickMsecs,
               U32 initialMaxTicks, bool preserveOrder, U32 defaultBucketSize );
   ~TimerWheel() override;

   U32 tickMsecs() const { return tickMsecs_; }
   // The time of a tick; that of tick 0 is the time of the wheel's making.
   Seconds tickTime( U64 tick ) const;

 private:
   struct Bucket {
      U64 tick;
      Reactor * first;
      Reactor * last;
   };
   class Tick : public Korv::Clock::Reactor {
    public:
      Tick( Korv::Ptr< Korv::Clock > clock, TimerWheel & wheel )
         : Reactor( std::move( clock ), Korv::Clock::Rank::wheel ), wheel_( wheel ) {}
      void onTime() override { wheel_.handleTick(); }

    private:
      TimerWheel & wheel_;
   };

   void handleTick();
   void schedule( Reactor & reactor, Seconds time );
   void link( Reactor & reactor );
   void unlink( Reactor & reactor );
   std::vector< Bucket >::iterator bucketAt( U64 tick );
   U64 ticksUntilNow() const;
   void armClock();

   Korv::Ptr< Korv::Clock > clock_;
   U32 tickMsecs_;
   Seconds madeAt_;
   Tick wakeUp_;
   std::vector< Bucket > buckets_;
   U64 runningTick_ = 0;     // 0: none
   Seconds brokenOffAt_ = 0; // what is left of that time's ticks is due no sooner
};

} // namespace Dovr
