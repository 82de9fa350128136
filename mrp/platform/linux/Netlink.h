// The few netlink messages that packet access reads: what the kernel says of links.
//
// All of it is bytes from outside, though the kernel's. Lengths are looked at before anything
// else; what does not fit ends the walk.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/pelk/EthAddr.h"

#include <optional>
#include <span>
#include <string>

namespace Linux {

using NetlinkBytes = std::span< Korv::U8 const >;

struct NetlinkMessage {
   Korv::U16 type;
   Korv::U16 flags;
   Korv::U32 sequence;
   Korv::U32 port;
   NetlinkBytes body;
};

// The first message of the datagram, which is cut off at its front; none if there is no more, or
// nothing sound.
std::optional< NetlinkMessage > nextMessage( NetlinkBytes & datagram );

// A message about a link (RTM_NEWLINK, RTM_DELLINK). What it does not say is empty.
struct LinkMessage {
   bool gone = false;
   bool ofBridge = false; // about the link as a port of a bridge, and nothing else
   int index = 0;
   bool ethernet = false;
   bool up = false; // switched on, and with a partner at the other end
   std::string name;
   std::optional< Korv::U32 > mtu;
   std::optional< Pelk::EthAddr > addr;
   std::optional< Korv::U8 > portState;
};

// None if the message is about something else, or not sound.
std::optional< LinkMessage > readLinkMessage( NetlinkMessage const & message );

} // namespace Linux
