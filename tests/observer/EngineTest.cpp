// A participant and its observers, over real sockets: whatever they do, it answers as fast as ever;
// while nobody takes anything its tree stands still; and whenever the streams are idle all trees
// are equal. What ends a stream, and how it comes again.
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observer/Connection.h"
#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include "tests/support/Participant.h"
#include "tests/support/Random.h"
#include "tests/support/TreeText.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

namespace TestSupport {
namespace {

std::string const et1 = "Ethernet1";
std::string const et2 = "Ethernet2";

// Sockets are real; the participant's time is not, so that nothing depends on how fast we are.
struct Scene {
   explicit Scene( std::string const & address,
                   Linux::AttrLogServer::Options const & options = {} ) {
      serverIs( Linux::StreamAddress::fromText( address ), options );
      Korv::NboAttrLog::top().socketOutSmIs( "host", server->socketOutSm() );
      mvrp.emplace( Mrp::MVRP, std::vector{ et1, et2 } );
      Korv::NboAttrLog::top().socketOutSmDel( "host" );
      mounts.statusIs( &mvrp->status() );
      mounts.configIs( &mvrp->config() );
      mounts.countersIs( mvrp->sm().mrpCounters() );
      mounts.parseContextIs( mvrp->sm().parseContext() );
   }
   void serverIs( Linux::StreamAddress const & at, Linux::AttrLogServer::Options const & options ) {
      server.emplace(
         sockets, at, [this]( auto & output ) { return mounts.mount( output ); }, options );
   }
   bool clogged() { return mvrp->sm().mrpAttrLogSm()->isAttrLogOutClogged(); }
   bool committed( U64 vlan ) {
      auto const found = mvrp->attribute( et1, vlan );
      return found && found->committed;
   }
   // For ten seconds of the sockets at most, and as many of the participant unless it waits.
   template < class Until >
   bool run( Until && until, double pace = 0.01 ) {
      for ( int i = 0; i < 1000 && !until(); ++i ) {
         sockets.runFor( 0.01 );
         mvrp->advanceBy( pace );
      }
      return until();
   }

   Linux::RealActivity sockets;
   Mrp::AttrLogMounts mounts;
   std::optional< Linux::AttrLogServer > server;
   std::optional< Participant > mvrp;
};

struct Observer {
   explicit Observer( Scene & of )
      : scene( of ), connection( of.sockets, of.server->address(), mirror ) {}
   bool equal() const {
      Participant & mvrp = *scene.mvrp;
      return treeText( mirror.status() ) == treeText( mvrp.status() ) &&
             treeText( mirror.config() ) == treeText( mvrp.config() ) &&
             treeText( mirror.counters() ) == treeText( mvrp.counters() ) &&
             treeText( mirror.parseContext() ) == treeText( *mvrp.sm().parseContext() );
   }
   Scene & scene;
   MrpObserver::Mirror mirror;
   MrpObserver::Connection connection;
};

// Each form of socket; nothing is left behind.
class Engine : public testing::TestWithParam< char const * > {
 protected:
   ~Engine() override { std::filesystem::remove( path_ ); }
   std::string address() const {
      return GetParam() == std::string( "unix" ) ? "unix:" + path_ : "tcp:0";
   }
   // One that reads no more, and whose socket has become full of states that came and went.
   static void stall( Scene & scene, Observer & observer ) {
      Participant & mvrp = *scene.mvrp;
      Bytes const join = mvrpFrame( vlans( 100, std::vector< Event >( 100, JoinIn ) ) );
      Bytes const leave = mvrpFrame( vlans( 100, std::vector< Event >( 100, Lv ) ) );
      mvrp.receive( et1, join );
      ASSERT_TRUE( scene.run( [&] { return scene.committed( 199 ) && observer.equal(); } ) );
      observer.connection.readingIs( false );
      int clogged = 0; // in a row
      for ( int frames = 0; clogged < 50 && frames < 100'000; ++frames ) {
         mvrp.receive( et1, frames % 2 ? join : leave );
         scene.sockets.runFor( 0 );
         clogged = scene.clogged() ? clogged + 1 : 0;
         if ( clogged == 50 ) { // and stays so, with all that its kernel takes
            scene.sockets.runFor( 0.1 );
            clogged = scene.clogged() ? clogged : 0;
         }
      }
      ASSERT_EQ( clogged, 50 );
      mvrp.receive( et1, join );
   }

 private:
   std::string path_ = testing::TempDir() + "mrp-mirror-" + std::to_string( ::getpid() );
};

Linux::AttrLogServer::Options const soonFull{ .bound = 4000, .sendBuffer = 4000, .stallLimit = 0 };

TEST_P( Engine, commitsNothingUntilOneOfItsObserversKeepsUp ) {
   Scene scene( address(), soonFull );
   Observer stalled( scene );
   stall( scene, stalled );
   Participant & mvrp = *scene.mvrp;
   mvrp.clear();
   mvrp.receive( et1, mvrpFrame( vlans( 20, { JoinIn, JoinIn, JoinIn } ) ) );
   mvrp.declare( et1, Vlan{ 30 }, 0 );
   mvrp.advanceBy( 0.2 );
   EXPECT_EQ( mvrp.indications().size(), 3u );
   EXPECT_THAT( mvrp.said(), testing::Contains( testing::HasSubstr( "30 New" ) ) );
   mvrp.advanceBy( 3 );
   for ( U64 const vlan : { U64{ 20 }, U64{ 21 }, U64{ 22 }, U64{ 30 } } ) {
      EXPECT_TRUE( mvrp.attribute( et1, vlan )->pending ) << vlan;
      EXPECT_FALSE( scene.committed( vlan ) ) << vlan;
   }

   Observer other( scene );
   EXPECT_TRUE( scene.run( [&] { return scene.committed( 30 ) && other.equal(); } ) );
   stalled.connection.readingIs( true );
   EXPECT_TRUE( scene.run( [&] { return stalled.equal(); } ) );
   EXPECT_EQ( stalled.connection.streams(), 1u ) << stalled.connection.lastError();
}

// Who has nothing to take is not to blame, and time counts from when there is something. The
// participant's time stands still, or it would always find something to say.
TEST_P( Engine, sendsAwayWhoTakesNothingForTooLong ) {
   Linux::AttrLogServer::Options options = soonFull;
   options.stallLimit = 2; // both ends run here, and a busy machine may hold them up
   Scene scene( address(), options );
   Observer one( scene );
   ASSERT_TRUE( scene.run( [&] { return one.equal(); } ) );
   one.connection.readingIs( false );
   scene.sockets.runFor( 2.1 );
   scene.mvrp->receive( et1, mvrpFrame( vlans( 9, { JoinIn } ) ) );
   scene.sockets.runFor( 0.15 );
   EXPECT_EQ( scene.server->stalled(), 0u );
   one.connection.readingIs( true );

   stall( scene, one );
   Observer other( scene );
   scene.mvrp->receive( et1, mvrpFrame( vlans( 20, { JoinIn } ) ) );
   ASSERT_TRUE( scene.run( [&] { return scene.server->stalled() > 0; }, 0 ) );
   EXPECT_TRUE( scene.run( [&] { return scene.committed( 20 ); } ) );
   one.connection.readingIs( true );
   EXPECT_TRUE( scene.run( [&] { return one.equal() && other.equal(); } ) );
   EXPECT_GT( one.connection.streams(), 1u );
   EXPECT_EQ( other.connection.streams(), 1u ) << other.connection.lastError();
}

void step( Participant & mvrp, Random & random ) {
   std::string const & intf = random.oneOf( { et1, et2 } );
   auto const vlan = static_cast< U16 >( 1 + random.below( 40 ) );
   switch ( random.below( 8 ) ) {
   case 0: mvrp.lib().mrpInterfaceDisable( Pelk::IntfId( intf ) ); break;
   case 1: mvrp.lib().mrpInterfaceEnable( Pelk::IntfId( intf ) ); break;
   case 2: mvrp.declare( intf, Vlan{ vlan }, random.below( 6 ) ); break;
   case 3: mvrp.receive( intf, mvrpFrame( vlans( vlan, { Lv, Lv, Lv, Lv } ) ) ); break;
   default: mvrp.receive( intf, mvrpFrame( vlans( vlan, { JoinIn, New, JoinMt, In, JoinIn } ) ) );
   }
   mvrp.advanceBy( random.below( 3 ) * 0.2 );
}

TEST_P( Engine, equalsEachObserversTreeWhateverHappens ) {
   for ( U64 seed = 1; seed <= 20; ++seed ) {
      Random random( seed );
      Scene scene( address(), soonFull );
      std::vector< std::unique_ptr< Observer > > observers( 3 );
      for ( int i = 0; i < 100; ++i ) {
         step( *scene.mvrp, random );
         auto & observer = observers[random.below( observers.size() )];
         if ( !observer ) {
            observer = std::make_unique< Observer >( scene );
         } else if ( random.below( 8 ) == 0 ) {
            observer = nullptr;
         } else {
            observer->connection.readingIs( random.below( 3 ) == 0 );
         }
         scene.sockets.runFor( 0 );
      }
      for ( auto & reader : observers ) {
         if ( reader ) {
            reader->connection.readingIs( true );
            ASSERT_TRUE( scene.run( [&] { return reader->equal(); }, 0 ) ) << "seed " << seed;
            EXPECT_LE( reader->connection.streams(), 1u ) << reader->connection.lastError();
         }
      }
   }
}

TEST_P( Engine, isFoundAgain ) {
   Scene scene( address() );
   Observer observer( scene );
   ASSERT_TRUE( scene.run( [&] { return observer.equal(); } ) );
   auto const at = scene.server->address();
   scene.server.reset();
   scene.mvrp->receive( et1, mvrpFrame( vlans( 20, { JoinIn } ) ) );
   ASSERT_TRUE( scene.run( [&] { return !observer.connection.connected(); } ) );
   scene.serverIs( at, {} );
   EXPECT_TRUE( scene.run( [&] { return observer.equal(); } ) );
   EXPECT_EQ( observer.connection.streams(), 2u );
}

INSTANTIATE_TEST_SUITE_P(, Engine, testing::Values( "unix", "tcp" ),
                         []( auto const & of ) { return std::string( of.param ); } );

// What it throws leaves the loop, and ends the stream and nothing more.
TEST( Observers, surviveAWatcherThatThrows ) {
   struct Watcher : Mrp::MrpConfig::Reactor {
      void onLeaveTime() override { throw std::runtime_error( "watcher" ); }
   };
   Scene scene( "tcp:0" );
   Observer observer( scene );
   ASSERT_TRUE( scene.run( [&] { return observer.equal(); } ) );
   {
      Watcher watcher;
      watcher.notifierIs( &observer.mirror.config() );
      scene.mvrp->config().leaveTimeIs( 3 );
      EXPECT_THROW( scene.sockets.runFor( 5 ), std::runtime_error );
   }
   EXPECT_FALSE( observer.connection.connected() );
   EXPECT_TRUE( scene.run( [&] { return observer.equal(); } ) );
}

// Tens of thousands of adapters go with an observer, but the engine must not wait for that.
TEST( Observers, goInPieces ) {
   Scene scene( "tcp:0" );
   auto & attributes = *scene.mvrp->status()
                           .applicationIs( Mrp::MVRP )
                           ->attrDatabaseIs( Pelk::IntfId( et1 ) )
                           ->intfTypeApplicantIs( vlanType );
   for ( U64 key = 1; key <= 12'000; ++key ) {
      attributes.mrpAttributeIs( key );
   }
   auto const * const first = attributes.mrpAttribute( 1 );
   auto const * const last = attributes.mrpAttribute( 12'000 );
   auto observer = std::make_unique< Observer >( scene );
   ASSERT_TRUE( scene.run( [&] { return last->isWatched() && scene.server->idle(); }, 0 ) );
   observer = nullptr;
   while ( first->isWatched() ) {
      scene.sockets.runFor( 0 );
   }
   EXPECT_TRUE( last->isWatched() );
   attributes.mrpAttributeDel( 11'000 ); // nobody is told, and nothing is amiss
   attributes.mrpAttributeIs( 20'000 );
   EXPECT_TRUE( scene.run( [&] { return !last->isWatched(); }, 0 ) );
   EXPECT_FALSE( attributes.mrpAttribute( 20'000 )->isWatched() );
}

TEST( Observers, mustNotSpeak ) {
   Scene scene( "tcp:0" );
   auto const peer = Linux::connectingSocket( scene.server->address() );
   ASSERT_TRUE( scene.run( [&] { return scene.server->observers() == 1; } ) );
   ASSERT_EQ( ::send( peer.number(), "hello", 5, MSG_NOSIGNAL ), 5 );
   EXPECT_TRUE( scene.run( [&] { return scene.server->observers() == 0; } ) );
}

TEST( Server, refusesOneMoreThanThereMayBe ) {
   Scene scene( "tcp:0", { .maxObservers = 1 } );
   Observer observer( scene );
   ASSERT_TRUE( scene.run( [&] { return observer.equal(); } ) );
   Observer other( scene );
   ASSERT_TRUE( scene.run( [&] { return scene.server->refused() > 0; } ) );
   EXPECT_EQ( scene.server->observers(), 1u );
   EXPECT_EQ( observer.connection.streams(), 1u );
}

TEST( Server, takesItsPathAlongUnlessAnotherHasItByNow ) {
   std::string const path = testing::TempDir() + "mrp-path-" + std::to_string( ::getpid() );
   Scene scene( "unix:" + path );
   std::filesystem::remove( path );
   {
      Linux::AttrLogServer const other( scene.sockets, scene.server->address(), nullptr );
      scene.server.reset();
      EXPECT_TRUE( std::filesystem::exists( path ) );
   }
   EXPECT_FALSE( std::filesystem::exists( path ) );
}

} // namespace
} // namespace TestSupport
