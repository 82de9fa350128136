// Packet access: one interface's source and sink of frames.
#pragma once

#include "mrp/platform/korv/Notifier.h"
#include "mrp/platform/pelk/Pkt.h"

namespace Pelk {

// Opened by the network that has the interface; held by the collection while the interface is
// wanted and exists, and by whoever is reading or sending meanwhile.
//
// The arrival of a frame is the only change of the readable count that is notified, one
// notification a frame: it calls for one read. Taking a frame out calls for nothing.
class Pam : public Korv::Notifier {
 public:
   class Reactor : public Korv::ReactorOn< Pam > {
    public:
      virtual void onReadableCount() {}
   };

   // The next received frame, or null.
   virtual Korv::Ptr< Pkt > rxPkt() = 0;
   // Sends a finished frame. No result: a frame that could not leave is lost like one on the wire.
   virtual void txPkt( Korv::Ptr< Pkt > pkt ) = 0;

   Korv::U64 readableCount() const { return readableCount_; }

 protected:
   void handleArrival() {
      ++readableCount_;
      notify( &Reactor::onReadableCount );
   }
   void handleTaken() { --readableCount_; }

 private:
   Korv::U64 readableCount_ = 0;
};

// The Pam of an Ethernet device.
class EthDevPam : public Pam {
 public:
   // True if a frame is waiting, whether its arrival has been notified or not.
   virtual bool hasDataOnSocket() const = 0;
};

} // namespace Pelk
