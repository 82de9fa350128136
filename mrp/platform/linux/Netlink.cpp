#include "mrp/platform/linux/Netlink.h"

#include <algorithm>
#include <cstring>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace Linux {

namespace {

// The record at the front of the bytes, in the host's order; none if there are too few.
template < class Record >
std::optional< Record > front( NetlinkBytes bytes ) {
   if ( bytes.size() < sizeof( Record ) ) {
      return {};
   }
   Record record;
   std::memcpy( &record, bytes.data(), sizeof record );
   return record;
}

// Cuts off the length and what fills it up to a multiple of four, which the last one may lack.
void cut( NetlinkBytes & bytes, std::size_t length ) {
   bytes = bytes.subspan( std::min( NLMSG_ALIGN( length ), bytes.size() ) );
}

struct Attribute {
   int type;
   NetlinkBytes payload;
};

// The first attribute, which is cut off; none if there is no more, or nothing sound.
std::optional< Attribute > nextAttribute( NetlinkBytes & bytes ) {
   auto const header = front< nlattr >( bytes );
   if ( !header || header->nla_len < sizeof *header || header->nla_len > bytes.size() ) {
      return {};
   }
   Attribute const attribute{ header->nla_type & NLA_TYPE_MASK,
                              bytes.first( header->nla_len ).subspan( sizeof *header ) };
   cut( bytes, header->nla_len );
   return attribute;
}

std::string textOf( NetlinkBytes payload ) {
   return std::string( payload.begin(), std::find( payload.begin(), payload.end(), 0 ) );
}

std::optional< Pelk::EthAddr > addressOf( NetlinkBytes payload ) {
   if ( payload.size() != Pelk::EthAddr::size ) {
      return {};
   }
   return Pelk::EthAddr( payload.first< Pelk::EthAddr::size >() );
}

std::optional< Korv::U8 > portStateOf( NetlinkBytes nested ) {
   while ( auto const attribute = nextAttribute( nested ) ) {
      if ( attribute->type == IFLA_BRPORT_STATE ) {
         return front< Korv::U8 >( attribute->payload );
      }
   }
   return {};
}

} // namespace

std::optional< NetlinkMessage > nextMessage( NetlinkBytes & datagram ) {
   auto const header = front< nlmsghdr >( datagram );
   if ( !header || header->nlmsg_len < sizeof *header || header->nlmsg_len > datagram.size() ) {
      return {};
   }
   NetlinkMessage const message{ header->nlmsg_type, header->nlmsg_flags, header->nlmsg_seq,
                                 header->nlmsg_pid,
                                 datagram.first( header->nlmsg_len ).subspan( sizeof *header ) };
   cut( datagram, header->nlmsg_len );
   return message;
}

std::optional< LinkMessage > readLinkMessage( NetlinkMessage const & message ) {
   auto const info = front< ifinfomsg >( message.body );
   if ( !info || ( message.type != RTM_NEWLINK && message.type != RTM_DELLINK ) ||
        ( info->ifi_family != AF_UNSPEC && info->ifi_family != AF_BRIDGE ) ) {
      return {};
   }
   constexpr unsigned carriesFrames = IFF_UP | IFF_RUNNING;
   LinkMessage link;
   link.gone = message.type == RTM_DELLINK;
   link.ofBridge = info->ifi_family == AF_BRIDGE;
   link.index = info->ifi_index;
   link.ethernet = info->ifi_type == ARPHRD_ETHER || info->ifi_type == ARPHRD_LOOPBACK;
   link.up = ( info->ifi_flags & carriesFrames ) == carriesFrames;

   NetlinkBytes rest = message.body;
   cut( rest, sizeof *info );
   while ( auto const attribute = nextAttribute( rest ) ) {
      switch ( attribute->type ) {
      case IFLA_IFNAME: link.name = textOf( attribute->payload ); break;
      case IFLA_MTU: link.mtu = front< Korv::U32 >( attribute->payload ); break;
      case IFLA_ADDRESS: link.addr = addressOf( attribute->payload ); break;
      case IFLA_PROTINFO: link.portState = portStateOf( attribute->payload ); break;
      default: break;
      }
   }
   return link;
}

} // namespace Linux
