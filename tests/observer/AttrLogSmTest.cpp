// When the stream's socket counts as clogged, on real descriptors.
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
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
   ASSERT_EQ( sm->attrLogKernTxBufferThreshold(), 100'000 );
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
   ASSERT_EQ( sm->getAttrLogKernTxBufferUsage(), 100'000 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   ASSERT_TRUE( send( 1 ) );
   EXPECT_TRUE( sm->isAttrLogOutClogged() );
   EXPECT_EQ( sm->attrLogKernTxBufferUsage(), 100'001 );

   // The size is that of the moment at which the descriptor came.
   bufferIs( writer, SO_SNDBUF, 200'000 );
   sm->attrLogSockFdIs( writer.number() );
   EXPECT_EQ( sm->attrLogKernTxBufferSize(), 200'000 );
   sm->attrLogSockFdIs( -1 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   sm->attrLogSockFdIs( writer.number() );
   EXPECT_EQ( sm->attrLogKernTxBufferThreshold(), 200'000 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
}

TEST( AttrLogSm, knowsNothingOfWhatIsNoSocket ) {
   std::array< int, 2 > pipe{};
   ASSERT_EQ( ::pipe( pipe.data() ), 0 );
   Descriptor const in( pipe[0] );
   Descriptor const out( pipe[1] );
   Descriptor const terminal( ::posix_openpt( O_RDWR | O_NOCTTY ) );
   struct Row {
      S32 fd;
      S32 held;
      bool clogged; // with a threshold of -1: as soon as the usage is known
   };
   for ( Row const & row : { Row{ -5, -1, false }, Row{ out.number(), out.number(), false },
                             Row{ terminal.number(), terminal.number(), !!terminal } } ) {
      SCOPED_TRACE( row.fd );
      auto const sm = smOf( row.fd );
      EXPECT_TRUE( sm->initialized() );
      EXPECT_EQ( sm->attrLogSockFd(), row.held );
      EXPECT_EQ( sm->attrLogKernTxBufferSize(), -1 );
      EXPECT_EQ( sm->attrLogKernTxBufferThreshold(), -1 );
      EXPECT_EQ( sm->isAttrLogOutClogged(), row.clogged );
      EXPECT_EQ( sm->attrLogKernTxBufferUsage(), row.clogged ? 0 : -1 );
   }
   auto const none = Korv::newValidPtr< MrpAttrLogSm >( nullptr );
   EXPECT_FALSE( none->initialized() );
   EXPECT_FALSE( none->isAttrLogOutClogged() );
}

} // namespace
} // namespace TestSupport
