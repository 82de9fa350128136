// An in-memory network: devices that come and go as its owner says.
#pragma once

#include "mrp/platform/kernel/KernelNetInfo.h"
#include "mrp/platform/memory/Device.h"

namespace Memory {

class Network : public KernelNetInfo::Status {
 public:
   using Status::Status;
   ~Network() override;

   // The device, or null.
   Device * device( Pelk::IntfId const & intfId ) const;
   // Finds or makes it.
   Device * deviceIs( Pelk::IntfId const & intfId );
   void deviceDel( Pelk::IntfId const & intfId );

   // Called for each frame that leaves any device. One callback; the bytes are good for the call
   // only.
   using Transmit = std::function< void( Pelk::IntfId const & intfId, FrameBytes frame ) >;
   void onTransmit( Transmit transmit ) { transmit_ = std::move( transmit ); }

   Korv::Ptr< Pelk::EthDevPam > newPam( Pelk::IntfId const & intfId,
                                        KernelNetInfo::PamSettings const & settings ) override;

 private:
   friend class Device;
   void handleTransmit( Pelk::IntfId const & intfId, FrameBytes frame ) const {
      if ( transmit_ ) {
         transmit_( intfId, frame );
      }
   }

   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Device > > device_;
   Transmit transmit_;
};

} // namespace Memory
