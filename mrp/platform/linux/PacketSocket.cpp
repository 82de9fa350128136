#include "mrp/platform/linux/PacketSocket.h"

#include <climits>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <linux/filter.h>
#include <linux/if_arp.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

namespace Linux {

namespace {

using Kind = InterfaceProblem::Kind;

static_assert( sizeof( sock_filter ) == sizeof( Pelk::SockFilterInstruction ) &&
               offsetof( sock_filter, jt ) == offsetof( Pelk::SockFilterInstruction, jt ) &&
               offsetof( sock_filter, k ) == offsetof( Pelk::SockFilterInstruction, k ) );

// What a short frame takes of the receive buffer; the kernel doubles it.
constexpr Korv::U32 bytesPerFrame = 1'024;

constexpr std::size_t tagBytes = 4;
constexpr std::size_t addressesBytes = 12; // a tag stands behind the two addresses

InterfaceProblem problemOf( int error, char const * doing ) {
   switch ( error ) {
   case EPERM:
   case EACCES:
      return { Kind::noPermission, "no permission to open packet sockets (it takes CAP_NET_RAW)" };
   case ENODEV:
   case ENXIO: return { Kind::noSuchInterface, "no such interface" };
   default:
      return { Kind::other, std::string( "cannot " ) + doing + ": " + std::strerror( error ) };
   }
}

// Room for one frame, and ahead of it for a tag.
std::array< Korv::U8, tagBytes + PacketSocket::frameBytesMax > staging;

FrameBytes withTag( std::size_t size, tpacket_auxdata const & aux ) {
   Korv::U8 * const front = staging.data() + tagBytes;
   // A priority tag of priority 0 is all zeros: only the flag tells that it is there.
   if ( ( aux.tp_status & TP_STATUS_VLAN_VALID ) == 0 || size < addressesBytes ) {
      return { front, size };
   }
   bool const hasType = ( aux.tp_status & TP_STATUS_VLAN_TPID_VALID ) != 0;
   Korv::U16 const tag[] = { htons( hasType ? aux.tp_vlan_tpid : Korv::U16{ ETH_P_8021Q } ),
                             htons( aux.tp_vlan_tci ) };
   static_assert( sizeof tag == tagBytes );
   std::memmove( front - tagBytes, front, addressesBytes );
   std::memcpy( front - tagBytes + addressesBytes, tag, sizeof tag );
   return { front - tagBytes, size + tagBytes };
}

tpacket_auxdata auxdataOf( msghdr & message ) {
   tpacket_auxdata aux{};
   for ( cmsghdr * c = CMSG_FIRSTHDR( &message ); c; c = CMSG_NXTHDR( &message, c ) ) {
      if ( c->cmsg_level == SOL_PACKET && c->cmsg_type == PACKET_AUXDATA &&
           c->cmsg_len >= CMSG_LEN( sizeof aux ) ) {
         std::memcpy( &aux, CMSG_DATA( c ), sizeof aux );
      }
   }
   return aux;
}

} // namespace

PacketSocket PacketSocket::open( int index, KernelNetInfo::PamSettings const & settings,
                                 InterfaceProblem & problem ) {
   // With protocol 0 it receives nothing until it is bound.
   PacketSocket opened(
      Descriptor( ::socket( AF_PACKET, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, 0 ) ) );
   problem = opened ? opened.setUp( index, settings ) : problemOf( errno, "open a packet socket" );
   return problem ? PacketSocket( Descriptor() ) : std::move( opened );
}

template < class Value >
bool PacketSocket::optionIs( int level, int option, Value const & value ) {
   return ::setsockopt( descriptor(), level, option, &value, sizeof value ) == 0;
}

InterfaceProblem PacketSocket::setUp( int index, KernelNetInfo::PamSettings const & settings ) {
   if ( auto const & program = settings.filterProgram; program.length() != 0 ) {
      sock_fprog filter{};
      filter.len = program.length();
      // The kernel copies the program and writes nothing.
      filter.filter = reinterpret_cast< sock_filter * >(
         const_cast< Pelk::SockFilterInstruction * >( program.address() ) );
      if ( !optionIs( SOL_SOCKET, SO_ATTACH_FILTER, filter ) ) {
         return problemOf( errno, "attach the filter" );
      }
   }
   if ( !optionIs( SOL_PACKET, PACKET_AUXDATA, 1 ) ) {
      return problemOf( errno, "ask for VLAN tags" );
   }
   // Kernels before 4.20 do not know it; receive looks at each frame's kind besides.
   optionIs( SOL_PACKET, PACKET_IGNORE_OUTGOING, 1 );

   // As much room as is granted: beyond the system's limit it takes CAP_NET_ADMIN.
   int const room = static_cast< int >(
      std::min( settings.rxQueueFrames, INT_MAX / 2 / bytesPerFrame ) * bytesPerFrame );
   if ( room != 0 && !optionIs( SOL_SOCKET, SO_RCVBUFFORCE, room ) ) {
      optionIs( SOL_SOCKET, SO_RCVBUF, room );
   }

   auto const group = settings.destination.bytes();
   if ( ( group[0] & 1u ) != 0 ) {
      packet_mreq membership{};
      membership.mr_ifindex = index;
      membership.mr_type = PACKET_MR_MULTICAST;
      membership.mr_alen = Pelk::EthAddr::size;
      std::copy( group.begin(), group.end(), membership.mr_address );
      if ( !optionIs( SOL_PACKET, PACKET_ADD_MEMBERSHIP, membership ) ) {
         return problemOf( errno, "take part in the group address" );
      }
   }

   sockaddr_ll addr{};
   addr.sll_family = AF_PACKET;
   addr.sll_protocol = htons( ETH_P_ALL );
   addr.sll_ifindex = index;
   socklen_t length = sizeof addr;
   auto * const at = reinterpret_cast< sockaddr * >( &addr );
   if ( ::bind( descriptor(), at, length ) != 0 ||
        ::getsockname( descriptor(), at, &length ) != 0 ) {
      return problemOf( errno, "bind a packet socket" );
   }
   if ( addr.sll_hatype != ARPHRD_ETHER && addr.sll_hatype != ARPHRD_LOOPBACK ) {
      return { Kind::notEthernet, "not an Ethernet interface" };
   }
   return {};
}

bool PacketSocket::hasFrame() const {
   pollfd waiting{ descriptor(), POLLIN, 0 };
   return ::poll( &waiting, 1, 0 ) == 1 && ( waiting.revents & POLLIN ) != 0;
}

PacketSocket::Received PacketSocket::receive() {
   iovec into{ staging.data() + tagBytes, frameBytesMax };
   sockaddr_ll from{};
   alignas( cmsghdr ) std::array< Korv::U8, CMSG_SPACE( sizeof( tpacket_auxdata ) ) > control;
   msghdr message{};
   message.msg_name = &from;
   message.msg_namelen = sizeof from;
   message.msg_iov = &into;
   message.msg_iovlen = 1;
   message.msg_control = control.data();
   message.msg_controllen = control.size();
   ssize_t const bytes = ::recvmsg( descriptor(), &message, MSG_DONTWAIT | MSG_TRUNC );
   if ( bytes < 0 ) {
      bool const none = errno == EAGAIN || errno == EWOULDBLOCK;
      return { none ? Outcome::nothing : Outcome::error, {} };
   }
   if ( from.sll_pkttype == PACKET_OUTGOING ) {
      return { Outcome::ours, {} };
   }
   std::size_t const size = static_cast< std::size_t >( bytes );
   tpacket_auxdata const aux = auxdataOf( message );
   // The kernel's own length: the filter, too, can have cut the frame.
   if ( size > frameBytesMax || aux.tp_len > size ) {
      return { Outcome::tooLong, {} };
   }
   return { Outcome::frame, withTag( size, aux ) };
}

int PacketSocket::send( std::span< FrameBytes const > parts ) {
   std::array< iovec, 2 > vectors;
   msghdr message{};
   message.msg_iov = vectors.data();
   for ( FrameBytes const & part : parts.first( std::min( parts.size(), vectors.size() ) ) ) {
      vectors[message.msg_iovlen++] = { const_cast< Korv::U8 * >( part.data() ), part.size() };
   }
   return ::sendmsg( descriptor(), &message, MSG_DONTWAIT | MSG_NOSIGNAL ) >= 0 ? 0 : errno;
}

int PacketSocket::takeError() {
   int error = 0;
   socklen_t length = sizeof error;
   ::getsockopt( descriptor(), SOL_SOCKET, SO_ERROR, &error, &length );
   return error;
}

Korv::U32 PacketSocket::takeOverrun() const {
   tpacket_stats stats{};
   socklen_t length = sizeof stats;
   ::getsockopt( descriptor(), SOL_PACKET, PACKET_STATISTICS, &stats, &length );
   return stats.tp_drops;
}

} // namespace Linux
