#include "mrp/platform/linux/LinkMonitor.h"

#include "mrp/platform/korv/FlagWhile.h"

#include <cerrno>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>

namespace Linux {

namespace {

// Room for a burst of announcements; beyond it they are lost and the table is read anew.
constexpr int receiveBufferBytes = 1 << 20;
// Dumps come in datagrams of this size at most, unless a single message is longer.
constexpr std::size_t datagramBytes = 32'768;
constexpr int patienceMsecs = 2'000;
// The most announcements that one call reads: in a storm of them the others wait for their turns.
constexpr int readsAtOnce = 1'000;
constexpr Seconds retryDelay = 1;

constexpr char const * cannotFollow = "cannot follow the kernel's network interfaces";

struct DumpRequest {
   nlmsghdr header;
   ifinfomsg info;
   nlattr filterHeader;
   Korv::U32 filter;
};
static_assert( sizeof( DumpRequest ) ==
               sizeof( nlmsghdr ) + sizeof( ifinfomsg ) + sizeof( nlattr ) + 4 );

Descriptor openSocket() {
   Descriptor opened(
      ::socket( AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE ) );
   if ( !opened ) {
      throwErrno( cannotFollow );
   }
   ::setsockopt( opened.number(), SOL_SOCKET, SO_RCVBUF, &receiveBufferBytes,
                 sizeof receiveBufferBytes );
   sockaddr_nl addr{};
   addr.nl_family = AF_NETLINK;
   addr.nl_groups = RTMGRP_LINK;
   if ( ::bind( opened.number(), reinterpret_cast< sockaddr * >( &addr ), sizeof addr ) != 0 ) {
      throwErrno( cannotFollow );
   }
   return opened;
}

Korv::U32 portOf( Descriptor const & socket ) {
   sockaddr_nl addr{};
   socklen_t length = sizeof addr;
   if ( ::getsockname( socket.number(), reinterpret_cast< sockaddr * >( &addr ), &length ) != 0 ) {
      throwErrno( cannotFollow );
   }
   return addr.nl_pid;
}

} // namespace

LinkMonitor::LinkMonitor( RealActivity & activity, LinkTable::Changed changed )
   : socket_( openSocket() ), buffer_( datagramBytes ),
     table_(
        portOf( socket_ ),
        [this]( Korv::U8 family, Korv::U32 sequence ) { return askForDump( family, sequence ); },
        std::move( changed ) ),
     retry_( activity.clock(), [this] { handleRetry(); } ),
     watch_( activity, socket_.number(), DescriptorWatch::reading,
             [this]( Korv::U32 ) { readOne(); } ) {
   table_.doDump();
   if ( !table_.isDumping() ) {
      throwErrno( cannotFollow );
   }
   while ( table_.isDumping() ) {
      pollfd waiting{ socket_.number(), POLLIN, 0 };
      if ( !readOne() && ::poll( &waiting, 1, patienceMsecs ) == 0 ) {
         errno = ETIMEDOUT;
         throwErrno( cannotFollow );
      }
   }
}

void LinkMonitor::handleRetry() {
   table_.doDump();
   retryIfFailed();
}

void LinkMonitor::retryIfFailed() {
   if ( table_.isDumpFailed() ) {
      retry_.doRunWithin( retryDelay );
   }
}

void LinkMonitor::readWaiting() {
   for ( int reads = 0; reads < readsAtOnce && !reading_ && readOne(); ++reads ) {
   }
}

bool LinkMonitor::readOne() {
   Korv::FlagWhile const reading( reading_ );
   sockaddr_nl from{};
   socklen_t fromBytes = sizeof from;
   ssize_t const bytes = ::recvfrom( socket_.number(), buffer_.data(), buffer_.size(), MSG_TRUNC,
                                     reinterpret_cast< sockaddr * >( &from ), &fromBytes );
   if ( bytes < 0 ) {
      int const error = errno;
      if ( error == ENOBUFS ) {
         handleRetry();
      }
      return error == ENOBUFS || error == EINTR;
   }
   std::size_t const length = static_cast< std::size_t >( bytes );
   if ( length > buffer_.size() ) {
      buffer_.resize( length ); // this one is lost, and the next one of its size is not
      table_.doDump();
   } else if ( from.nl_pid == 0 ) { // from the kernel: other processes have nothing to say
      table_.handleDatagram( NetlinkBytes( buffer_ ).first( length ) );
   }
   retryIfFailed();
   return true;
}

bool LinkMonitor::askForDump( Korv::U8 family, Korv::U32 sequence ) {
   DumpRequest request{};
   request.header.nlmsg_len = sizeof request;
   request.header.nlmsg_type = RTM_GETLINK;
   request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
   request.header.nlmsg_seq = sequence;
   request.info.ifi_family = family;
   // Counters, which nobody here reads, would make up most of each answer.
   request.filterHeader.nla_len = sizeof( nlattr ) + sizeof request.filter;
   request.filterHeader.nla_type = IFLA_EXT_MASK;
   request.filter = RTEXT_FILTER_SKIP_STATS;
   sockaddr_nl kernel{};
   kernel.nl_family = AF_NETLINK;
   return ::sendto( socket_.number(), &request, sizeof request, 0,
                    reinterpret_cast< sockaddr * >( &kernel ), sizeof kernel ) == sizeof request;
}

} // namespace Linux
