#include "mrp/platform/memory/Wire.h"

#include "mrp/platform/dovr/Microsecond.h"

namespace Memory {

// A frame on its way: a timer that stands for its arrival.
class Wire::Flight : public Korv::Clock::Reactor {
 public:
   explicit Flight( Wire & wire )
      : Reactor( wire.clock_, Korv::Clock::Rank::outside ), wire_( wire ) {}
   void onTime() override { wire_.handleArrived( *this ); }

   Device * from = nullptr; // for comparison only
   Frame frame;

 private:
   Wire & wire_;
};

Wire::Wire( Korv::Ptr< Korv::Clock > clock ) : clock_( std::move( clock ) ) {}

Wire::~Wire() {
   for ( End const & end : ends_ ) {
      end.device->listenerDel( end.listener );
   }
}

void Wire::join( Korv::Ptr< Device > device ) {
   Device & from = *device;
   ends_.push_back( { device, from.listenerIs( [this, &from]( FrameBytes frame ) {
                        handleSent( from, frame );
                     } ) } );
}

void Wire::leave( Device & device ) {
   std::erase_if( ends_, [&]( End const & end ) {
      if ( end.device.ptr() != &device ) {
         return false;
      }
      device.listenerDel( end.listener );
      return true;
   } );
}

void Wire::handleSent( Device & from, FrameBytes frame ) {
   Fate const fate = judge_ ? judge_( from, frame ) : Fate{};
   for ( Korv::U32 copy = 0; copy < fate.copies; ++copy ) {
      launch( from, frame, fate.lateness );
   }
}

void Wire::launch( Device & from, FrameBytes frame, Korv::Seconds lateness ) {
   if ( idle_.empty() ) {
      flights_.push_back( std::make_unique< Flight >( *this ) );
      idle_.push_back( flights_.back().get() );
   }
   Flight & flight = *idle_.back();
   idle_.pop_back();
   flight.from = &from;
   flight.frame.assign( frame.begin(), frame.end() );
   flight.timeMinIs( Dovr::toMicrosecond( clock_->now() + delay_ + lateness ) );
}

void Wire::handleArrived( Flight & flight ) {
   auto const ends = ends_; // a reader may pull plugs
   for ( End const & end : ends ) {
      if ( end.device.ptr() != flight.from ) {
         end.device->deliver( flight.frame );
      }
   }
   idle_.push_back( &flight );
}

} // namespace Memory
