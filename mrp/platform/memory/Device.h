// An in-memory network device: where wires are plugged in and Pams are opened.
#pragma once

#include "mrp/platform/memory/Pam.h"
#include "mrp/platform/pelk/IntfId.h"

#include <functional>
#include <vector>

namespace Memory {

class Network;

// Owned by its network and by the Pams that are open on it: one that has left the network still
// takes frames, and they go nowhere.
//
// A frame sent by a Pam goes to the network's watcher and then to the device's listeners, the
// wires, in the order of their registration. A frame from the wire goes to each open Pam. What a
// Pam sends, the other Pams of the device do not hear.
class Device : public Korv::PtrInterface {
 public:
   Device( Network & network, Pelk::IntfId const & intfId )
      : network_( &network ), intfId_( intfId ) {}

   Pelk::IntfId const & intfId() const { return intfId_; }

   // The bytes are good for the call only. A listener does not change the listeners.
   using Listener = std::function< void( FrameBytes frame ) >;
   // Called for each frame sent. The number given takes it back.
   Korv::U32 listenerIs( Listener listener );
   void listenerDel( Korv::U32 number );

   // From the wire: through each Pam's filter, or past it. True if any Pam took the frame.
   bool deliver( FrameBytes frame ) { return deliverToEach( frame, &Pam::deliver ); }
   bool deliverPastFilter( FrameBytes frame ) {
      return deliverToEach( frame, &Pam::deliverPastFilter );
   }

   // The Pam opened last of those that are open, or null.
   Pam * pam() const { return pams_.empty() ? nullptr : pams_.back(); }

 private:
   friend class Pam;
   friend class Network;
   void pamAdd( Pam * pam ) { pams_.push_back( pam ); }
   void pamDel( Pam * pam ) { std::erase( pams_, pam ); }
   void transmit( FrameBytes frame );
   bool deliverToEach( FrameBytes frame, bool ( Pam::*intake )( FrameBytes ) );

   struct Listening {
      Korv::U32 number;
      Listener listener;
   };

   Network * network_; // null once it has left
   Pelk::IntfId intfId_;
   std::vector< Pam * > pams_;
   std::vector< Listening > listening_;
   Korv::U32 listeners_ = 0; // ever registered
};

} // namespace Memory
