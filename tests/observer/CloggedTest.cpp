// A participant whose observer stops reading: it answers as fast as ever, its tree stands still,
// and afterwards the two trees are equal.
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observer/Connection.h"
#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include "tests/support/Participant.h"
#include "tests/support/TreeText.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

std::string const et1 = "Ethernet1";

// Sockets are real; the participant's time is not, so that nothing depends on how fast we are.
TEST( Clogged, holdsCommitsAndNothingElse ) {
   Linux::RealActivity sockets;
   Mrp::AttrLogMounts mounts;
   Linux::AttrLogServer::Options options;
   options.bound = 4000;
   options.sendBuffer = 4000;
   Linux::AttrLogServer server(
      sockets, Linux::StreamAddress::fromText( "tcp:0" ),
      [&]( auto & output ) { return mounts.mount( output ); }, options );
   MrpObserver::Mirror mirror;
   MrpObserver::Connection connection( sockets, server.address(), mirror );

   Korv::NboAttrLog::top().socketOutSmIs( "host", server.socketOutSm() );
   Participant mvrp( Mrp::MVRP, { et1 } );
   Korv::NboAttrLog::top().socketOutSmDel( "host" );
   mounts.statusIs( &mvrp.status() );
   mounts.parseContextIs( mvrp.sm().parseContext() );
   auto const equal = [&] {
      return treeText( mirror.status() ) == treeText( mvrp.status() ) &&
             treeText( mirror.parseContext() ) == treeText( *mvrp.sm().parseContext() );
   };
   auto const run = [&]( auto && until ) {
      for ( int i = 0; i < 500 && !until(); ++i ) {
         sockets.runFor( 0.01 );
         mvrp.advanceBy( 0.01 );
      }
      return until();
   };

   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   ASSERT_TRUE( run( [&] { return mvrp.attribute( et1, 10 )->committed && equal(); } ) );
   ASSERT_GE( mvrp.sm().mrpAttrLogSm()->attrLogSockFd(), 0 );

   // Refreshes alone fill whatever the two kernels' buffers hold.
   connection.readingIs( false );
   Bytes const refresh = mvrpFrame( vlans( 10, { JoinIn } ) );
   Bytes const other = mvrpFrame( vlans( 11, { JoinIn } ) );
   int frames = 0;
   while ( !mvrp.sm().mrpAttrLogSm()->isAttrLogOutClogged() && frames < 1'000'000 ) {
      mvrp.receive( et1, frames++ % 2 ? refresh : other );
      sockets.runFor( 0 );
   }
   ASSERT_TRUE( mvrp.sm().mrpAttrLogSm()->isAttrLogOutClogged() );
   bool const eleven = mvrp.attribute( et1, 11 )->committed;

   mvrp.clear();
   mvrp.receive( et1, mvrpFrame( vlans( 20, { JoinIn, JoinIn, JoinIn } ) ) );
   mvrp.declare( et1, Vlan{ 30 }, 0 );
   mvrp.advanceBy( 0.2 );
   EXPECT_EQ( mvrp.indications().size(), 3u );
   EXPECT_THAT( mvrp.said(), testing::Contains( testing::HasSubstr( "30 New" ) ) );
   mvrp.advanceBy( 3 );
   for ( U64 const vlan : { 20, 21, 22, 30 } ) {
      EXPECT_TRUE( mvrp.attribute( et1, vlan )->pending ) << vlan;
      EXPECT_FALSE( mvrp.attribute( et1, vlan )->committed ) << vlan;
   }
   EXPECT_EQ( mvrp.attribute( et1, 11 )->committed, eleven );

   connection.readingIs( true );
   EXPECT_TRUE( run( [&] { return mvrp.attribute( et1, 30 )->committed && equal(); } ) );
   EXPECT_EQ( connection.streams(), 1u ) << connection.lastError();
}

} // namespace
} // namespace TestSupport
