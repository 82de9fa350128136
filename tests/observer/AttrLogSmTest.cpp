// When the stream's socket counts as clogged, on real descriptors.
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <gtest/gtest.h>

#include <array>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace TestSupport {
namespace {

using Korv::S32;
using Linux::Descriptor;
using Mrp::MrpAttrLogSm;

class Out : public Korv::NboAttrLog::SocketOutSm {
 public:
   explicit Out( S32 fd ) : fd_( fd ) {}
   S32 sockFd() const override { return fd_; }

 private:
   S32 fd_;
};

Korv::Ptr< MrpAttrLogSm > smOf( S32 fd ) {
   return Korv::newValidPtr< MrpAttrLogSm >(
      Korv::Ptr< Korv::NboAttrLog::SocketOutSm >( new Out( fd ) ) );
}

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
   auto const sm = smOf( writer.number() );
   ASSERT_EQ( sm->attrLogKernTxBufferSize(), 200'000 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );

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
   std::array< int, 2 > pipe{};
   ASSERT_EQ( ::pipe( pipe.data() ), 0 );
   Descriptor const in( pipe[0] );
   Descriptor const out( pipe[1] );
   sm->attrLogSockFdIs( out.number() );
   EXPECT_EQ( sm->attrLogKernTxBufferThreshold(), -1 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
}

} // namespace
} // namespace TestSupport
