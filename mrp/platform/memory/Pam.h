// Packet access to an in-memory device.
#pragma once

#include "mrp/platform/kernel/PamSettings.h"
#include "mrp/platform/memory/FrameQueue.h"
#include "mrp/platform/pelk/Pam.h"

namespace Memory {

class Device;

// Opened by the network; a device lists those that are open on it, and can have several. Frames
// wait as plain bytes and become packets of the receive pool when they are read.
class Pam : public Pelk::EthDevPam {
 public:
   Pam( Korv::Ptr< Device > device, KernelNetInfo::PamSettings const & settings );
   ~Pam() override;

   Korv::Ptr< Pelk::Pkt > rxPkt() override;
   void txPkt( Korv::Ptr< Pelk::Pkt > pkt ) override;
   bool hasDataOnSocket() const override { return !waiting_.empty(); }

   Device & device() const { return *device_; }
   KernelNetInfo::PamSettings const & settings() const { return settings_; }

   // A frame from the wire, through the filter; true if it passed and waits to be read. A runt
   // never passes.
   bool deliver( FrameBytes frame );
   // The same past the filter.
   bool deliverPastFilter( FrameBytes frame );
   // The same for a runt too: whoever reads that has something to assert.
   bool deliverAnything( FrameBytes frame );

   Korv::U64 heldBack() const { return heldBack_; } // by the filter, and runts
   Korv::U64 overrun() const { return overrun_; }   // with too many waiting

 private:
   Korv::Ptr< Device > device_;
   KernelNetInfo::PamSettings settings_;
   FrameQueue waiting_;
   Korv::U64 heldBack_ = 0;
   Korv::U64 overrun_ = 0;
};

} // namespace Memory
