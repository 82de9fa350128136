// Keeps a mirror on a server's stream: connects, reads, and connects again.
//
// Owned by the observer's process, made after the activity and the mirror, which outlive it, and
// not ended by a watcher of the mirror (which may stop the activity instead). Whatever ends a
// stream, the server's end, a broken connection or bytes that make no sense, it waits and connects
// anew, at first soon and then at longer intervals; the mirror keeps what it had until the next
// stream says otherwise. What a watcher of the mirror throws ends the stream too, and then leaves
// the loop.
#pragma once

#include "mrp/observer/Mirror.h"
#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <optional>
#include <string>

namespace MrpObserver {

class Connection {
 public:
   static constexpr Korv::Seconds firstDelay = 0.1;
   static constexpr Korv::Seconds longestDelay = 5;

   // Throws Korv::RangeException for an address that cannot be one; for all else it tries again.
   Connection( Linux::RealActivity & activity, Linux::StreamAddress address, Mirror & mirror );
   Connection( Connection const & ) = delete;
   Connection & operator=( Connection const & ) = delete;
   ~Connection();

   // A stream is under way: its first bytes have come.
   bool connected() const { return connected_; }
   // How many streams there have been, and why the last attempt or stream ended.
   Korv::U64 streams() const { return streams_; }
   std::string const & lastError() const { return lastError_; }
   // Off, nothing is read: what the server sends stays in the sockets between, until they are full.
   void readingIs( bool reading );

 private:
   void connect();
   void handleReady( Korv::U32 ready );
   void handleEnd( std::string const & error );

   Linux::RealActivity & activity_;
   Linux::StreamAddress address_;
   Mirror & mirror_;
   Linux::Descriptor socket_;
   std::optional< Linux::DescriptorWatch > watch_;
   Korv::CallbackTimer retry_{ activity_.clock(), [this] { connect(); } };
   Korv::Seconds delay_ = firstDelay;
   Korv::U64 streams_ = 0;
   std::string lastError_;
   bool connected_ = false;
   bool connecting_ = false;
   bool reading_ = true;
};

} // namespace MrpObserver
