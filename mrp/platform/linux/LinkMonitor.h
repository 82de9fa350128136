// The kernel's word on its links, read from a netlink socket.
#pragma once

#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/LinkTable.h"

#include <vector>

namespace Linux {

// Owned by the host. Reads the table in full when it is made, and follows the kernel's
// announcements from then on, one datagram a turn. It needs no privilege.
class LinkMonitor {
 public:
   // Throws std::system_error if the kernel cannot be asked. `changed` is called from the loop,
   // or from readWaiting, and not while this is being made.
   LinkMonitor( RealActivity & activity, LinkTable::Changed changed );

   LinkTable const & table() const { return table_; }
   // Takes in what the kernel has announced by now.
   void readWaiting();

 private:
   // False if nothing waits.
   bool readOne();
   bool askForDump( Korv::U8 family, Korv::U32 sequence );

   Descriptor socket_;
   std::vector< Korv::U8 > buffer_;
   LinkTable table_;
   bool reading_ = false;
   DescriptorWatch watch_;
};

} // namespace Linux
