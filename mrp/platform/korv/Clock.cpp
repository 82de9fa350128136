#include "mrp/platform/korv/Clock.h"

#include "mrp/platform/korv/Assert.h"

#include <tuple>

namespace Korv {

Clock::Reactor::Reactor( Ptr< Clock > clock, Rank rank )
   : clock_( std::move( clock ) ), rank_( rank ) {}

Clock::Reactor::~Reactor() { clock_->arm( *this, never ); }

void Clock::Reactor::timeMinIs( Seconds time ) {
   if ( time != timeMin_ ) {
      clock_->arm( *this, time );
   }
}

bool Clock::Sooner::operator()( Reactor const * a, Reactor const * b ) const {
   return std::tie( a->timeMin_, a->rank_, a->arming_ ) <
          std::tie( b->timeMin_, b->rank_, b->arming_ );
}

void Clock::arm( Reactor & reactor, Seconds time ) {
   if ( reactor.timeMin_ != never ) {
      spare_ = armed_.extract( &reactor );
   }
   reactor.timeMin_ = time;
   reactor.arming_ = ++armings_;
   if ( time == never ) {
      return;
   }
   if ( spare_ ) {
      spare_.value() = &reactor;
      armed_.insert( std::move( spare_ ) );
   } else {
      armed_.insert( &reactor );
   }
}

Seconds Clock::nextTime() const { return armed_.empty() ? never : ( *armed_.begin() )->timeMin_; }

bool Clock::doFireNext() {
   if ( armed_.empty() || ( *armed_.begin() )->timeMin_ > now_ ) {
      return false;
   }
   Reactor * const due = *armed_.begin();
   arm( *due, never );
   due->onTime();
   return true;
}

namespace {
ActivityManager * current_ = nullptr;
}

ActivityManager::ActivityManager() : previous_( current_ ) { current_ = this; }

ActivityManager::~ActivityManager() { current_ = previous_; }

ActivityManager & activityManager() {
   assertThat( current_ != nullptr, "an activity manager is installed" );
   return *current_;
}

Seconds now() { return activityManager().clock()->now(); }

} // namespace Korv
