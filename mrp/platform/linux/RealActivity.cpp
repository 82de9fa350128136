#include "mrp/platform/linux/RealActivity.h"

#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/FlagWhile.h"
#include "mrp/platform/linux/DescriptorWatch.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <sys/epoll.h>
#include <sys/timerfd.h>

namespace Linux {

namespace {

// So long input waits for timers that are due, or for one of them if that takes longer: also for
// one that arms itself again and again for the time that it is.
constexpr Seconds timersTurn = 0.02;

// How late a timer still counts as fired at its time. No loop wakes on the dot; a periodic timer of
// the wheel, which asks for its next tick from the time that it is told, must not miss that tick.
constexpr Seconds punctual = 0.05;

// The furthest that the kernel's timer is set. A longer wait is woken in between, for nothing.
constexpr Seconds farAway = 1e9;

} // namespace

RealActivity::RealActivity()
   : epoll_( ::epoll_create1( EPOLL_CLOEXEC ) ),
     timer_( ::timerfd_create( CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC ) ) {
   // Edge-triggered, the timer tells once that it has gone off and need not be read.
   epoll_event event{};
   event.events = EPOLLIN | EPOLLET;
   if ( !epoll_ || !timer_ ||
        ::epoll_ctl( epoll_.number(), EPOLL_CTL_ADD, timer_.number(), &event ) != 0 ) {
      throwErrno( "cannot make an event loop" );
   }
   clock()->nowIs( monotonicTime() );
}

Seconds RealActivity::monotonicTime() {
   timespec t{};
   ::clock_gettime( CLOCK_MONOTONIC, &t );
   return static_cast< Seconds >( t.tv_sec ) + static_cast< Seconds >( t.tv_nsec ) / 1e9;
}

void RealActivity::runUntil( Seconds end ) {
   Korv::assertThat( !running_, "the loop is entered from outside of all notifications" );
   Korv::FlagWhile const run( running_ );
   stopping_ = false;

   for ( bool last = false; !last && !stopping_; ) {
      Seconds const time = monotonicTime();
      last = time >= end;
      fireTimers( time );
      clock()->nowIs( time );
      if ( !stopping_ ) {
         handleInput( std::min( end, clock()->nextTime() ) );
      }
   }
}

void RealActivity::fireTimers( Seconds time ) {
   turnEnd_ = time + timersTurn;
   while ( !stopping_ ) {
      Seconds const due = clock()->nextTime();
      if ( due > time ) {
         return;
      }
      clock()->nowIs( time - due < punctual ? std::max( due, clock()->now() ) : time );
      clock()->doFireNext();
      if ( isTurnOver() ) {
         return;
      }
   }
}

void RealActivity::handleInput( Seconds until ) {
   bool const sleeps = until > clock()->now();
   if ( sleeps ) {
      armTimer( until );
   }
   // One at a time: no other notification can then have ended what this one is for.
   epoll_event event;
   int const ready = ::epoll_wait( epoll_.number(), &event, 1, sleeps ? -1 : 0 );
   wakeUps_ += sleeps ? 1 : 0;
   if ( ready < 0 && errno != EINTR ) {
      throwErrno( "cannot wait for events" );
   }
   if ( ready <= 0 ) {
      return;
   }
   if ( event.data.ptr == nullptr ) {
      armedFor_ = Korv::never;
   } else {
      DescriptorWatch::dispatch( event.data.ptr, event.events );
   }
}

void RealActivity::armTimer( Seconds time ) {
   if ( time == armedFor_ ) {
      return;
   }
   itimerspec setting{}; // of zeros: never
   if ( time != Korv::never ) {
      Seconds const at = std::min( time, clock()->now() + farAway );
      Seconds const whole = std::floor( at );
      setting.it_value.tv_sec = static_cast< std::time_t >( whole );
      // Rounded up: waking a nanosecond early would cost another round.
      setting.it_value.tv_nsec =
         std::clamp( std::lround( std::ceil( ( at - whole ) * 1e9 ) ), 1L, 999'999'999L );
   }
   ::timerfd_settime( timer_.number(), TFD_TIMER_ABSTIME, &setting, nullptr );
   armedFor_ = time;
   ++timerSettings_;
}

} // namespace Linux
