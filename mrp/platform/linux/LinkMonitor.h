// The kernel's word on its links, read from a netlink socket.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/LinkTable.h"

#include <vector>

namespace Linux {

// Owned by the host. Reads the table in full when it is made, and follows the kernel's
// announcements from then on, one datagram a turn. When it cannot be read in full, because the
// kernel has no memory for instance, it is read again a second later. It needs no privilege.
class LinkMonitor {
 public:
   // Throws std::system_error if the kernel cannot be asked. `changed` is called from the loop or
   // from readWaiting; and, for each link that there is, while this is being made and cannot be
   // asked yet.
   LinkMonitor( RealActivity & activity, LinkTable::Changed changed );

   LinkTable const & table() const { return table_; }
   // Takes in what the kernel has announced by now.
   void readWaiting();

 private:
   // False if nothing waits.
   bool readOne();
   bool askForDump( Korv::U8 family, Korv::U32 sequence );
   void handleRetry();
   void retryIfFailed();

   Descriptor socket_;
   std::vector< Korv::U8 > buffer_;
   LinkTable table_;
   bool reading_ = false;
   Korv::CallbackTimer retry_;
   DescriptorWatch watch_;
};

} // namespace Linux
