#include "mrp/platform/memory/Device.h"

#include "mrp/platform/memory/Network.h"

#include <algorithm>

namespace Memory {

Korv::U32 Device::listenerIs( Listener listener ) {
   listening_.push_back( { ++listeners_, std::move( listener ) } );
   return listeners_;
}

void Device::listenerDel( Korv::U32 number ) {
   std::erase_if( listening_, [&]( Listening const & l ) { return l.number == number; } );
}

void Device::transmit( FrameBytes frame ) {
   if ( !network_ ) {
      return;
   }
   network_->handleTransmit( intfId_, frame );
   for ( auto const & l : listening_ ) {
      l.listener( frame );
   }
}

bool Device::deliverToEach( FrameBytes frame, bool ( Pam::*intake )( FrameBytes ) ) {
   // A Pam's reader may close Pams and open others; those opened meanwhile have missed the frame.
   Korv::Ptr< Device > const self( this );
   bool taken = false;
   auto const open = pams_;
   for ( Pam * const pam : open ) {
      if ( std::find( pams_.begin(), pams_.end(), pam ) != pams_.end() ) {
         taken = ( pam->*intake )( frame ) || taken;
      }
   }
   return taken;
}

} // namespace Memory
