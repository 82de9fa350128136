#include "mrp/platform/dovr/TimerWheel.h"

#include "mrp/platform/dovr/Microsecond.h"

#include <algorithm>
#include <cmath>

namespace Dovr {

void TimerWheel::Reactor::timeMinIs( Seconds time ) {
   if ( time != timeMin_ ) {
      timeMin_ = time;
      wheel_->schedule( *this, time );
   }
}

TimerWheel::TimerWheel( Activity /* korvFwkActivity */, Korv::Ptr< Korv::Clock > systemClock,
                        U32 tickMsecs, U32 /* initialMaxTicks */, bool /* preserveOrder */,
                        U32 defaultBucketSize )
   : clock_( std::move( systemClock ) ), tickMsecs_( tickMsecs ), madeAt_( clock_->now() ),
     wakeUp_( clock_, *this ) {
   buckets_.reserve( defaultBucketSize );
}

TimerWheel::~TimerWheel() = default;

Seconds TimerWheel::tickTime( U64 tick ) const {
   return toMicrosecond( madeAt_ + static_cast< Seconds >( tick * tickMsecs_ ) / 1000 );
}

// The latest tick that is not in the future: all ticks up to it count as processed, those without
// timers too.
U64 TimerWheel::ticksUntilNow() const {
   Seconds const sinceMaking = clock_->now() - madeAt_ + microsecond;
   return static_cast< U64 >( std::max( 0.0, std::floor( sinceMaking * 1000 / tickMsecs_ ) ) );
}

void TimerWheel::schedule( Reactor & reactor, Seconds time ) {
   constexpr Seconds beyondAllTicks = 1e15;

   if ( reactor.tick_ != 0 ) {
      unlink( reactor );
   }
   Seconds const ticks = std::ceil( ( time - madeAt_ - microsecond ) * 1000 / tickMsecs_ );
   if ( ticks < beyondAllTicks ) {
      // When the loop is late, several ticks are made up for in one go: then those after the
      // running one are still to come.
      U64 const processed = runningTick_ != 0 ? runningTick_ : ticksUntilNow();
      reactor.tick_ = std::max( processed + 1, static_cast< U64 >( std::max( 0.0, ticks ) ) );
      link( reactor );
   }
   armClock();
}

std::vector< TimerWheel::Bucket >::iterator TimerWheel::bucketAt( U64 tick ) {
   return std::lower_bound( buckets_.begin(), buckets_.end(), tick,
                            []( Bucket const & bucket, U64 t ) { return bucket.tick > t; } );
}

void TimerWheel::link( Reactor & reactor ) {
   auto const bucket = bucketAt( reactor.tick_ );
   if ( bucket == buckets_.end() || bucket->tick != reactor.tick_ ) {
      buckets_.insert( bucket, { reactor.tick_, &reactor, &reactor } );
      return;
   }
   reactor.previous_ = bucket->last;
   bucket->last->next_ = &reactor;
   bucket->last = &reactor;
}

void TimerWheel::unlink( Reactor & reactor ) {
   Reactor * const previous = std::exchange( reactor.previous_, nullptr );
   Reactor * const next = std::exchange( reactor.next_, nullptr );
   if ( !previous || !next ) {
      auto const bucket = bucketAt( reactor.tick_ );
      if ( previous == next ) { // both null: the only one
         buckets_.erase( bucket );
      } else {
         ( previous ? bucket->last : bucket->first ) = previous ? previous : next;
      }
   }
   if ( previous ) {
      previous->next_ = next;
   }
   if ( next ) {
      next->previous_ = previous;
   }
   reactor.tick_ = 0;
}

void TimerWheel::handleTick() {
   // The owner may let go of the wheel in a timer; and whatever a timer throws, the rest of the
   // tick stays armed.
   struct Run {
      Korv::Ptr< TimerWheel > wheel;
      ~Run() {
         wheel->runningTick_ = 0;
         wheel->armClock();
      }
   } const run{ this };

   U64 const due = ticksUntilNow();
   while ( !buckets_.empty() && buckets_.back().tick <= due ) {
      Reactor & reactor = *buckets_.back().first;
      runningTick_ = reactor.tick_;
      unlink( reactor );
      reactor.timeMin_ = Korv::never;
      reactor.onTime();
      if ( Korv::activityManager().isTurnOver() ) {
         // Not for the time of the tick: that would be before all that has become due since.
         brokenOffAt_ = clock_->now();
         break;
      }
   }
}

void TimerWheel::armClock() {
   if ( runningTick_ == 0 ) {
      wakeUp_.timeMinIs( buckets_.empty()
                            ? Korv::never
                            : std::max( tickTime( buckets_.back().tick ), brokenOffAt_ ) );
   }
}

} // namespace Dovr
