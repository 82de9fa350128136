// Packet access to a Linux interface.
#pragma once

#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/PacketSocket.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/pelk/Pam.h"

namespace Linux {

class Network;

// Opened by its network, with a packet socket of its own. Frames wait in the kernel until they
// are read. A readable socket gets one turn a round of the loop, and one notification in it, which
// calls for one read: so a storm of frames holds up neither timers nor other interfaces.
//
// A reader that leaves the frame where it is (a participant in standby) is told of it again when
// the next one arrives, and not before; once it reads, it is given all that has waited.
//
// A link that goes down costs one error; the Pam stays and serves the link when it is up again.
// The Pam of an interface that has been deleted is dead, and goes with the device.
class Pam : public Pelk::EthDevPam {
 public:
   Pam( RealActivity & activity, Korv::Ptr< Network > network, Pelk::IntfId const & intfId,
        PacketSocket socket, KernelNetInfo::PamSettings const & settings );
   ~Pam() override;

   Korv::Ptr< Pelk::Pkt > rxPkt() override;
   void txPkt( Korv::Ptr< Pelk::Pkt > pkt ) override;
   // Asks the kernel.
   bool hasDataOnSocket() const override { return socket_.hasFrame(); }

   Pelk::IntfId const & intfId() const { return intfId_; }
   KernelNetInfo::PamSettings const & settings() const { return settings_; }

   Korv::U64 received() const { return received_; }
   Korv::U64 sent() const { return sent_; }
   // Frames that are not the reader's: what the filter would reject with the tag back in its
   // place, runts, and frames that this host sends.
   Korv::U64 heldBack() const { return heldBack_; }
   Korv::U64 tooLong() const { return tooLong_; } // dropped whole
   Korv::U64 overrun() const;                     // with too many waiting
   Korv::U64 receiveErrors() const { return receiveErrors_; }
   // Frames that did not leave, and the error of the latest.
   Korv::U64 sendErrors() const { return sendErrors_; }
   int lastSendError() const { return lastSendError_; }

 private:
   void handleReady( Korv::U32 ready );

   Korv::Ptr< Network > network_;
   Pelk::IntfId intfId_;
   PacketSocket socket_;
   KernelNetInfo::PamSettings settings_;
   bool asked_ = false; // whether a reader has come for the frame announced last
   Korv::U64 received_ = 0;
   Korv::U64 sent_ = 0;
   Korv::U64 heldBack_ = 0;
   Korv::U64 tooLong_ = 0;
   Korv::U64 receiveErrors_ = 0;
   Korv::U64 sendErrors_ = 0;
   int lastSendError_ = 0;
   mutable Korv::U64 overrun_ = 0;
   DescriptorWatch watch_; // the first to go
};

} // namespace Linux
