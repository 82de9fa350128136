// When the stream's socket counts as clogged, on real descriptors.
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <gtest/gtest.h>

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <vector>

namespace TestSupport {
namespace {

using Korv::S32;
using Linux::Descriptor;

struct Out : Korv::NboAttrLog::SocketOutSm {
   S32 sockFd() const override { return -5; }
};

void bufferIs( Descriptor const & socket, int which, int bytes ) {
   ASSERT_EQ( ::setsockopt( socket.number(), SOL_SOCKET, which, &bytes, sizeof bytes ), 0 );
}

TEST( AttrLogSm, isCloggedByMoreThanHalfOfTheBuffer ) {
   auto const listening = Linux::listeningSocket( Linux::StreamAddress::fromText( "tcp:0" ) );
   auto const reader = Linux::connectingSocket( Linux::StreamAddress::fromText(
      "tcp:" + std::to_string( Linux::listeningPort( listening ) ) ) );
   auto const writer = Linux::acceptedSocket( listening );
   bufferIs( reader, SO_RCVBUF, 4096 );
   bufferIs( writer, SO_SNDBUF, 100'000 ); // the kernel doubles it
   auto const sm = Korv::newValidPtr< Mrp::MrpAttrLogSm >( new Out );
   EXPECT_EQ( sm->attrLogSockFd(), -1 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   sm->attrLogSockFdIs( writer.number() );
   ASSERT_EQ( sm->attrLogKernTxBufferSize(), 200'000 );

   // The other end takes some of it, and then no more.
   std::vector< char > const bytes( 100'000 );
   auto const send = [&]( S32 count ) {
      return ::send( writer.number(), bytes.data(), static_cast< std::size_t >( count ),
                     MSG_DONTWAIT | MSG_NOSIGNAL ) > 0;
   };
   for ( S32 missing; ( missing = 100'000 - sm->getAttrLogKernTxBufferUsage() ) > 0; ) {
      ASSERT_TRUE( send( missing ) );
   }
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   ASSERT_TRUE( send( 1 ) );
   EXPECT_TRUE( sm->isAttrLogOutClogged() );
   EXPECT_EQ( sm->attrLogKernTxBufferUsage(), 100'001 );

   // The size is that of the moment at which the descriptor came.
   bufferIs( writer, SO_SNDBUF, 200'000 );
   sm->attrLogSockFdIs( writer.number() );
   EXPECT_TRUE( sm->isAttrLogOutClogged() );
   sm->attrLogSockFdIs( -1 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   sm->attrLogSockFdIs( writer.number() );
   EXPECT_EQ( sm->attrLogKernTxBufferThreshold(), 200'000 );

   // What is no socket has none.
   Descriptor const none( ::eventfd( 0, 0 ) );
   sm->attrLogSockFdIs( none.number() );
   EXPECT_EQ( sm->attrLogKernTxBufferThreshold(), -1 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
}

} // namespace
} // namespace TestSupport
