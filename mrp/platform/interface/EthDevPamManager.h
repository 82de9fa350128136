// Turns wishes into packet access.
#pragma once

#include "mrp/platform/interface/DeviceIntfStatusDir.h"
#include "mrp/platform/interface/EthDevPamCollection.h"
#include "mrp/platform/interface/PamDesiredIntfDir.h"

namespace Interface {

// While enabled, keeps the collection equal to the desired interfaces that exist as devices: a Pam
// comes and goes within the call that changes the wish or the device. A device that cannot be
// opened stays without a Pam until its entry or the wish changes.
//
// Settings hold for the Pams opened after they were made. Owned by the participant, which shares
// the three with it.
class EthDevPamManager : public Korv::PtrInterface {
 public:
   EthDevPamManager( Korv::Ptr< PamDesiredIntfDir > desired,
                     Korv::Ptr< EthDevPamCollection > collection,
                     Korv::Ptr< DeviceIntfStatusDir > devices );

   KernelNetInfo::PamSettings const & settings() const { return settings_; }
   // How often to try again with a frame that the device's queue has no room for.
   void txRetriesIs( Korv::U32 retries ) { settings_.txRetries = retries; }
   // How many frames may wait unread on one interface.
   void rxQueueFramesIs( Korv::U32 frames ) { settings_.rxQueueFrames = frames; }
   void destinationIs( Pelk::EthAddr const & addr ) { settings_.destination = addr; }
   void filterProgramIs( Pelk::SockFilterProgram const & program ) {
      settings_.filterProgram = program;
   }
   void perIntfSocketIs( bool perIntfSocket ) { settings_.perIntfSocket = perIntfSocket; }

   bool enabled() const { return enabled_; }
   void enabledIs( bool enabled );

 private:
   class Desired : public PamDesiredIntfDir::Reactor {
    public:
      explicit Desired( EthDevPamManager & manager ) : manager_( manager ) {}
      void onIntfDesired( Pelk::IntfId const & intfId ) override { manager_.handleIntf( intfId ); }

    private:
      EthDevPamManager & manager_;
   };
   class Devices : public DeviceIntfStatusDir::Reactor {
    public:
      explicit Devices( EthDevPamManager & manager ) : manager_( manager ) {}
      void onIntfStatus( Pelk::IntfId const & intfId ) override { manager_.handleIntf( intfId ); }

    private:
      EthDevPamManager & manager_;
   };

   void handleIntf( Pelk::IntfId const & intfId );

   Korv::Ptr< PamDesiredIntfDir > desiredDir_;
   Korv::Ptr< EthDevPamCollection > collection_;
   Korv::Ptr< DeviceIntfStatusDir > deviceDir_;
   KernelNetInfo::PamSettings settings_;
   bool enabled_ = false;
   Desired desired_{ *this };
   Devices devices_{ *this };
};

} // namespace Interface
