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
   explicit ActionTimer( std::function< void() > action, Where &&... where )
      : Base( std::forward< Where >( where )... ), action_( std::move( action ) ) {}
   void onTime() override { action_(); }

 private:
   std::function< void() > action_;
};

struct Timer : ActionTimer< Korv::Clock::Reactor > {
   explicit Timer( std::function< void() > action,
                   Korv::Clock::Rank rank = Korv::Clock::Rank::outside )
      : ActionTimer( std::move( action ), Korv::activityManager().clock(), rank ) {}
};
using WheelTimer = ActionTimer< Dovr::TimerWheel::Reactor >;

} // namespace Platform
