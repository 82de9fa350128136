// Time, and the process object it comes from.
#pragma once

#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Types.h"

#include <functional>
#include <set>

namespace Korv {

// The clock that all timers stand on. Within one notification the time is constant.
//
// Owned by the activity manager, which alone moves it; reactors are timers, one pending time each.
// Timers due at one time fire by rank (the wheel's tick, then review timers, then whatever stands
// for input from outside), and within a rank in the order of their latest arming.
class Clock : public PtrInterface {
 public:
   enum class Rank : U8 { wheel, review, outside };

   // A timer. Derive, implement onTime, and ask for it by timeMinIs. It may be armed for a time
   // that has passed: it then fires as soon as the loop comes round.
   class Reactor {
    public:
      Reactor( Ptr< Clock > clock, Rank rank );
      Reactor( Reactor const & ) = delete;
      Reactor & operator=( Reactor const & ) = delete;
      virtual ~Reactor();

      virtual void onTime() = 0;

      // One onTime at or after the time; `never` takes it back. Asking for the time already held
      // changes nothing, its place among timers of that time included. Once fired, a timer holds
      // `never`.
      Seconds timeMin() const { return timeMin_; }
      void timeMinIs( Seconds time );
      Clock const & clock() const { return *clock_; }

    private:
      friend class Clock;
      Ptr< Clock > clock_;
      Seconds timeMin_ = never;
      U64 arming_ = 0;
      Rank rank_;
   };

   Seconds now() const { return now_; }

   // For the activity manager.
   Seconds nextTime() const; // of the earliest timer, or never
   void nowIs( Seconds now ) { now_ = now; }
   // Fires the first timer that is due by now; false if none is.
   bool doFireNext();

 private:
   struct Sooner {
      bool operator()( Reactor const * a, Reactor const * b ) const;
   };
   using Armed = std::set< Reactor *, Sooner >;

   void arm( Reactor & reactor, Seconds time );

   Seconds now_ = 0;
   U64 armings_ = 0;
   Armed armed_;
   Armed::node_type spare_; // of the timer disarmed last: re-arming allocates nothing
};

// A timer that calls a function back, for what an owner does later or again. It ranks with input
// from outside.
class CallbackTimer : public Clock::Reactor {
 public:
   using Callback = std::function< void() >;
   CallbackTimer( Ptr< Clock > clock, Callback callback )
      : Reactor( std::move( clock ), Clock::Rank::outside ), callback_( std::move( callback ) ) {}

   void onTime() override { callback_(); }
   void doRunIn( Seconds delay ) { timeMinIs( clock().now() + delay ); }
   // The same, unless it is to run already.
   void doRunWithin( Seconds delay ) {
      if ( timeMin() == never ) {
         doRunIn( delay );
      }
   }

 private:
   Callback callback_;
};

// The process object: it owns the clock and runs the loop. There is one at a time; making one
// installs it and destroying it brings the previous one back, so that a test or a simulation can
// have a virtual one for its lifetime.
class ActivityManager {
 public:
   ActivityManager( ActivityManager const & ) = delete;
   ActivityManager & operator=( ActivityManager const & ) = delete;
   virtual ~ActivityManager();

   Ptr< Clock > const & clock() const { return clock_; }

   // Whether a notification that has many things to do should leave the rest for the next round,
   // since others have waited for long enough. Never where no time passes meanwhile.
   virtual bool isTurnOver() const { return false; }

 protected:
   ActivityManager();

 private:
   Ptr< Clock > clock_{ new Clock };
   ActivityManager * previous_;
};

// Asserts that there is one.
ActivityManager & activityManager();
Seconds now();

} // namespace Korv
