// Timers that do what they are told: of the clock itself, and of a wheel.
#pragma once

#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/korv/Clock.h"

#include <functional>
#include <utility>

namespace Platform {

template < class Base >
class ActionTimer : public Base {
 public:
   template < class... Where >
   explicit ActionTimer( std::function< void() > does, Where &&... where )
      : Base( std::forward< Where >( where )... ), action( std::move( does ) ) {}
   void onTime() override {
      if ( auto const own = action ) { // the timer may go in it
         own();
      }
   }

   std::function< void() > action;
};

struct Timer : ActionTimer< Korv::Clock::Reactor > {
   explicit Timer( std::function< void() > does,
                   Korv::Clock::Rank rank = Korv::Clock::Rank::outside )
      : ActionTimer( std::move( does ), Korv::activityManager().clock(), rank ) {}
};
using WheelTimer = ActionTimer< Dovr::TimerWheel::Reactor >;

} // namespace Platform
