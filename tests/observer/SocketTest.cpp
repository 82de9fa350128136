// Mirror streams on real sockets: observers that come late, stall, die and come again.
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observer/Connection.h"
#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include "tests/observer/SocketForms.h"
#include "tests/support/TreeText.h"

#include <gmock/gmock.h>

#include <memory>
#include <sys/socket.h>

namespace TestSupport {
namespace {

using Linux::AttrLogServer;
using Linux::StreamAddress;

struct Scene {
   explicit Scene( std::string const & address, AttrLogServer::Options const & options = {} ) {
      mounts.statusIs( status );
      mounts.configIs( config );
      server.emplace(
         activity, StreamAddress::fromText( address ),
         [this]( auto & output ) { return mounts.mount( output ); }, options );
   }
   Mrp::MrpIntfTypeApplicant & vlans() {
      return *status->applicationIs( Mrp::MVRP )
                 ->attrDatabaseIs( Pelk::IntfId( "e1" ) )
                 ->intfTypeApplicantIs( 1 );
   }
   std::string text() const { return treeText( *status ) + treeText( *config ); }
   static std::string text( MrpObserver::Mirror const & mirror ) {
      return treeText( mirror.status() ) + treeText( mirror.config() );
   }
   template < class Observer >
   bool isMirrored( Observer const & by ) const {
      return server->idle() && text( by.mirror ) == text();
   }
   // Until it holds, for at most five seconds.
   template < class Condition >
   bool runUntil( Condition && condition ) {
      for ( int i = 0; i < 500 && !condition(); ++i ) {
         activity.runFor( 0.01 );
      }
      return condition();
   }

   Linux::RealActivity activity;
   Korv::Ptr< Mrp::MrpStatus > status{ new Mrp::MrpStatus( "status" ) };
   Korv::Ptr< Mrp::MrpConfig > config{ new Mrp::MrpConfig( "config" ) };
   Mrp::AttrLogMounts mounts;
   std::optional< AttrLogServer > server;
};

struct Observer {
   explicit Observer( Scene & scene )
      : connection( scene.activity, scene.server->address(), mirror ) {}
   MrpObserver::Mirror mirror;
   MrpObserver::Connection connection;
};

using Sockets = SocketForms;

TEST_P( Sockets, bringEveryObserverUpToDate ) {
   Scene scene( address() );
   for ( U64 vlan = 1; vlan <= 4094; ++vlan ) {
      scene.vlans().mrpAttributeIs( vlan )->attributeValueEnq( 1 );
   }
   Observer one( scene );
   ASSERT_TRUE( scene.runUntil( [&] { return scene.isMirrored( one ); } ) );
   Observer two( scene );
   scene.vlans().mrpAttributeDel( 17 );
   EXPECT_TRUE( scene.runUntil( [&] { return scene.isMirrored( two ); } ) );
   EXPECT_TRUE( scene.runUntil( [&] { return scene.isMirrored( one ); } ) );
   EXPECT_EQ( scene.server->observers(), 2u );
}

// The process stands in for the engine: it changes ten thousand times while nobody reads, and what
// arrives is the last of each.
TEST_P( Sockets, sendTheLastOfManyChangesToOneThatStalled ) {
   AttrLogServer::Options options;
   options.bound = 4000;
   options.sendBuffer = 4000;
   Scene scene( address(), options );
   scene.vlans().mrpAttributeIs( 1 );
   Observer observer( scene );
   ASSERT_TRUE( scene.runUntil( [&] { return scene.isMirrored( observer ); } ) );
   observer.connection.readingIs( false );
   auto const sm = Korv::newValidPtr< Mrp::MrpAttrLogSm >( scene.server->socketOutSm() );
   ASSERT_GE( sm->attrLogSockFd(), 0 );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   U64 const before = observer.mirror.messages();
   for ( U32 i = 0; i < 300'000; ++i ) {
      scene.vlans().mrpAttribute( 1 )->applicantStateIs(
         static_cast< Mrp::MrpApplicantState >( i % 12 ) );
      if ( i % 1000 == 0 ) {
         scene.activity.runFor( 0 );
      }
   }
   EXPECT_TRUE( sm->isAttrLogOutClogged() );
   observer.connection.readingIs( true );
   ASSERT_TRUE( scene.runUntil( [&] { return scene.isMirrored( observer ); } ) );
   EXPECT_FALSE( sm->isAttrLogOutClogged() );
   EXPECT_LT( observer.mirror.messages() - before, 200'000u );
   EXPECT_EQ( observer.connection.streams(), 1u );
}

TEST_P( Sockets, areFoundAgain ) {
   auto scene = std::make_unique< Scene >( address() );
   Observer observer( *scene );
   ASSERT_TRUE( scene->runUntil( [&] { return observer.connection.connected(); } ) );
   auto const at = scene->server->address();
   scene->server.reset();
   scene->vlans().mrpAttributeIs( 1 );
   ASSERT_TRUE( scene->runUntil( [&] { return !observer.connection.connected(); } ) );
   scene->server.emplace( scene->activity, at,
                          [&]( auto & output ) { return scene->mounts.mount( output ); } );
   ASSERT_TRUE( scene->runUntil( [&] { return scene->isMirrored( observer ); } ) );
   EXPECT_EQ( observer.connection.streams(), 2u );
}

// What it throws leaves the loop, and ends the stream and nothing more.
TEST_P( Sockets, surviveAWatcherThatThrows ) {
   struct Watcher : Mrp::MrpConfig::Reactor {
      void onLeaveTime() override { throw std::runtime_error( "watcher" ); }
   };
   Scene scene( address() );
   Observer observer( scene );
   ASSERT_TRUE( scene.runUntil( [&] { return scene.isMirrored( observer ); } ) );
   {
      Watcher watcher;
      watcher.notifierIs( &observer.mirror.config() );
      scene.config->leaveTimeIs( 3 );
      EXPECT_THROW( scene.activity.runFor( 5 ), std::runtime_error );
   }
   EXPECT_FALSE( observer.connection.connected() );
   scene.config->leaveTimeIs( 4 );
   EXPECT_TRUE( scene.runUntil( [&] { return scene.isMirrored( observer ); } ) );
}

// Tens of thousands of adapters go with an observer, but the engine must not wait for that.
TEST_P( Sockets, dropAdaptersInPieces ) {
   Scene scene( address() );
   for ( U64 key = 1; key <= 12'000; ++key ) {
      scene.vlans().mrpAttributeIs( key );
   }
   auto const * const last = scene.vlans().mrpAttribute( 12'000 );
   auto observer = std::make_unique< Observer >( scene );
   ASSERT_TRUE( scene.runUntil( [&] { return last->isWatched() && scene.server->idle(); } ) );
   observer = nullptr;
   while ( scene.server->observers() > 0 ) {
      scene.activity.runFor( 0 );
   }
   EXPECT_TRUE( last->isWatched() );
   scene.vlans().mrpAttributeDel( 1 ); // nobody is told, and nothing is amiss
   scene.vlans().mrpAttributeDel( 11'000 );
   scene.vlans().mrpAttributeIs( 20'000 );
   EXPECT_TRUE( scene.runUntil( [&] { return !last->isWatched(); } ) );
   EXPECT_FALSE( scene.vlans().mrpAttribute( 20'000 )->isWatched() );
}

// Someone who talks is no observer.
TEST_P( Sockets, endWithAnObserverThatSpeaks ) {
   Scene scene( address() );
   auto const peer = Linux::connectingSocket( scene.server->address() );
   ASSERT_TRUE( scene.runUntil( [&] { return scene.server->observers() == 1; } ) );
   ASSERT_EQ( ::send( peer.number(), "hello", 5, MSG_NOSIGNAL ), 5 );
   EXPECT_TRUE( scene.runUntil( [&] { return scene.server->observers() == 0; } ) );
}

INSTANTIATE_TEST_SUITE_P(, Sockets, socketForms(), socketFormName );

} // namespace
} // namespace TestSupport
