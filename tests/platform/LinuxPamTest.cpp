// Packet access to real interfaces, the way of a participant: a wish on one side, the Pam in the
// collection on the other.
#include "mrp/platform/interface/EthDevPamManager.h"
#include "mrp/platform/interface/NetNsIntfStatusManagerRoot.h"
#include "mrp/platform/linux/Host.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include "tests/platform/LinuxScene.h"
#include "tests/platform/Timers.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <optional>
#include <thread>

namespace Linux {
namespace {

Pelk::IntfId const va( "va" );

// Takes one frame out of its Pam for each that is announced.
class Reader : public Pelk::Pam::Reactor {
 public:
   void onReadableCount() override {
      ++announced;
      if ( !reading ) {
         return;
      }
      if ( auto const pkt = const_cast< Pelk::Pam * >( notifier() )->rxPkt() ) {
         frames.emplace_back( pkt->frontData(), pkt->frontData() + pkt->bytes() );
      }
      if ( action ) {
         action();
      }
   }
   int announced = 0;
   bool reading = true;
   std::vector< Frame > frames;
   std::function< void() > action;
};

// What a participant sets up for packet access: wishes on one side, the collection on the other.
class Pams : public Interface::EthDevPamCollection::Reactor {
 public:
   explicit Pams( Host & host )
      : root_( new Interface::NetNsIntfStatusManagerRoot( nullptr, host.allIntfStatusDir(), nullptr,
                                                          false ) ) {
      notifierIs( collection.ptr() );
      root_->intfStatusManagerIs( nullptr, devices_, host.network(), "default" );
   }
   void onIntfPam( Pelk::IntfId const & intfId ) override {
      changes += ( collection->intfPam( intfId ) ? "+" : "-" ) + intfId.stringValue();
   }

 private:
   Korv::Ptr< Interface::DeviceIntfStatusDir > devices_ =
      new Interface::DeviceIntfStatusDir( "devices" );
   Korv::Ptr< Interface::NetNsIntfStatusManagerRoot > root_;

 public:
   std::string changes; // "+va-va": what has come and gone
   Korv::Ptr< Interface::PamDesiredIntfDir > const desired =
      new Interface::PamDesiredIntfDir( "desired" );
   Korv::Ptr< Interface::EthDevPamCollection > const collection =
      new Interface::EthDevPamCollection( "pams" );
   Korv::Ptr< Interface::EthDevPamManager > const manager =
      new Interface::EthDevPamManager( desired, collection, devices_ );
};

class LinuxPam : public Scene {
 protected:
   void SetUp() override {
      Scene::SetUp();
      if ( IsSkipped() ) {
         return;
      }
      wire.emplace( "vb" );
      host.emplace( activity );
      host->interfaceIs( va );
      pams.emplace( *host );
      pams->manager->filterProgramIs( mvrpSettings().filterProgram );
      pams->manager->destinationIs( mvrpSettings().destination );
      pams->manager->rxQueueFramesIs( mvrpSettings().rxQueueFrames );
      pams->manager->enabledIs( true );
      isWanted( true );
      EXPECT_EQ( pams->changes, "+va" ); // within the wish
      reader.notifierIs( pam() );
   }
   void isWanted( bool wanted ) { pams->desired->intfDesiredIs( va, wanted ); }
   Pam * pam() const { return static_cast< Pam * >( pams->collection->intfPam( va ) ); }
   bool readUntil( std::size_t count ) {
      return runUntil( [&] { return reader.frames.size() >= count; } );
   }
   static Korv::Ptr< Pelk::Pkt > pkt( Frame const & frame ) {
      return Pelk::receivePool().newPkt( frame.data(), frame.size() );
   }
   // Frames go both ways.
   bool carries() {
      reader.frames.clear();
      reader.notifierIs( pam() );
      Wire const end( "vb" );
      end.send( numberedFrame( 1 ) );
      pam()->txPkt( pkt( numberedFrame( 2 ) ) );
      return readUntil( 1 ) && end.heard().size() == 1;
   }

   std::optional< Wire > wire;
   std::optional< Host > host;
   std::optional< Pams > pams;
   Reader reader;
};

TEST_F( LinuxPam, framesAreAsTheyWereOnTheWire ) {
   run( "ip link set va mtu 65535 && ip link set vb mtu 65535" );
   std::vector< Frame > wanted{
      numberedFrame( 1 ), numberedFrame( 2, { 0x81, 0x00, 0x60, 0x05 } ), // VLAN 5 at priority 3
      numberedFrame( 3, { 0x81, 0x00, 0x00, 0x00 } ), // a priority tag of priority 0, all zeros
   };
   for ( Frame const & frame : wanted ) {
      wire->send( frame );
   }
   // The kernel's filter looks behind every tag; on the wire only 0x8100 may stand there.
   wire->send( numberedFrame( 6, { 0x88, 0xa8, 0x00, 0x05 } ) );
   wire->send( numberedFrame( 7, { 0x81, 0x00, 0x00, 0x05, 0x81, 0x00, 0x00, 0x05 } ) );
   Frame other = numberedFrame( 8 );
   other[5] = 0x20;
   wire->send( other );
   other = numberedFrame( 9 );
   other.resize( PacketSocket::frameBytesMax + 1 );
   wire->send( other );
   other.pop_back(); // the longest that there is room for
   wire->send( other );
   wanted.push_back( other );
   ASSERT_TRUE( readUntil( wanted.size() ) );
   EXPECT_EQ( reader.frames, wanted );
   EXPECT_EQ( pam()->received(), wanted.size() );
   EXPECT_EQ( pam()->heldBack(), 2u );
   EXPECT_EQ( pam()->tooLong(), 1u );
}

TEST_F( LinuxPam, aPortOfABridgeHearsTheGroupAddressToo ) {
   run( "ip link add name br0 type bridge && ip link set br0 up && ip link set va master br0" );
   char const * const takesPart = "ip maddress show dev va | grep -q 01:80:c2:00:00:21";
   EXPECT_EQ( std::system( takesPart ), 0 );
   wire->send( numberedFrame( 1, { 0x81, 0x00, 0x00, 0x00 } ) );
   ASSERT_TRUE( readUntil( 1 ) );
   EXPECT_EQ( reader.frames[0], numberedFrame( 1, { 0x81, 0x00, 0x00, 0x00 } ) );
   isWanted( false );
   EXPECT_NE( std::system( takesPart ), 0 );
}

TEST_F( LinuxPam, whatThisHostSendsItDoesNotHear ) {
   auto const second = host->network()->newPam( va, mvrpSettings() );
   Wire const neighbourly( "va" ); // another program of this host
   neighbourly.send( numberedFrame( 1 ) );
   auto const inTwoParts = pkt( numberedFrame( 2 ) );
   Frame head( inTwoParts->frontData(), inTwoParts->frontData() + 14 );
   inTwoParts->delSharedHeadData( 14 );
   inTwoParts->privateHeadIs( head.data(), head.size() );
   pam()->txPkt( inTwoParts );
   EXPECT_EQ( wire->heard(), ( std::vector< Frame >{ numberedFrame( 1 ), numberedFrame( 2 ) } ) );
   activity.runFor( 0.02 );
   EXPECT_EQ( reader.announced, 0 );
   EXPECT_FALSE( second->rxPkt() );
   EXPECT_EQ( pam()->sent(), 1u );
}

TEST_F( LinuxPam, nothingUnfilteredEverWaits ) {
   std::atomic< bool > over = false;
   std::atomic< int > sent = 0;
   std::thread flood( [&] {
      Frame other = numberedFrame();
      other[13] = 0xf6;
      while ( !over ) {
         wire->send( other );
         ++sent;
      }
   } );
   while ( sent == 0 ) {
      std::this_thread::yield();
   }
   int waiting = 0;
   for ( int i = 0; i < 60; ++i ) {
      waiting += host->network()->newPam( va, mvrpSettings() )->hasDataOnSocket();
   }
   over = true;
   flood.join();
   EXPECT_EQ( waiting, 0 );
}

TEST_F( LinuxPam, framesLeftWhereTheyAreCostNothingUntilTheNext ) {
   reader.reading = false;
   wire->send( numberedFrame( 1 ) );
   EXPECT_TRUE( pam()->hasDataOnSocket() ); // ahead of its announcement
   ASSERT_TRUE( runUntil( [&] { return reader.announced > 0; } ) );
   activity.runFor( 0.01 );
   int const first = reader.announced;
   auto const wakeUps = activity.wakeUps();
   activity.runFor( 0.05 );
   EXPECT_EQ( reader.announced, first );
   EXPECT_LE( activity.wakeUps() - wakeUps, 3u );

   wire->send( numberedFrame( 2 ) );
   ASSERT_TRUE( runUntil( [&] { return reader.announced > first; } ) );
   reader.reading = true;
   wire->send( numberedFrame( 3 ) );
   ASSERT_TRUE( readUntil( 3 ) );
   EXPECT_EQ( reader.frames[0], numberedFrame( 1 ) );
}

TEST_F( LinuxPam, aStormHoldsUpNoTimer ) {
   constexpr std::size_t frames = 5'000;
   for ( std::size_t i = 0; i < frames; ++i ) {
      wire->send( numberedFrame( static_cast< Korv::U8 >( i ) ) );
   }
   // Each frame takes a while to work off.
   reader.action = [] {
      auto const until = std::chrono::steady_clock::now() + std::chrono::microseconds( 40 );
      while ( std::chrono::steady_clock::now() < until ) {
      }
   };
   int fired = 0;
   Platform::Timer periodic( nullptr );
   periodic.action = [&] {
      fired += pam()->hasDataOnSocket() ? 1 : 0;
      periodic.timeMinIs( Korv::now() + 0.01 );
   };
   auto const lost = pam()->overrun(); // where the system grants no such queue
   ASSERT_LT( lost, frames / 2 ) << "net.core.rmem_max is too small for this test";
   periodic.timeMinIs( Korv::now() );
   ASSERT_TRUE( readUntil( frames - lost ) );
   EXPECT_GE( fired, 5 ); // of 10 and more
   EXPECT_EQ( reader.frames.back()[numberAt], static_cast< Korv::U8 >( frames - lost - 1 ) );
}

TEST_F( LinuxPam, theReaderMayCloseItWhileItReads ) {
   std::vector< char > inItsPlace;
   reader.action = [&] {
      isWanted( false );
      inItsPlace = std::vector< char >( sizeof( Pam ), 'x' ); // so that a use of it shows
   };
   wire->send( numberedFrame( 1 ) );
   wire->send( numberedFrame( 2 ) );
   ASSERT_TRUE( runUntil( [&] { return !pam(); } ) );
   activity.runFor( 0.01 );
   EXPECT_EQ( reader.announced, 1 );
   EXPECT_FALSE( host->pam( va ) );
}

TEST_F( LinuxPam, ofALinkThatGoesDownCostsOneErrorAndStays ) {
   EXPECT_TRUE( carries() );
   Pam * const before = pam();
   run( "ip link set va down" );
   ASSERT_TRUE( runUntil( [&] { return before->receiveErrors() > 0; } ) );
   auto const wakeUps = activity.wakeUps();
   before->txPkt( pkt( numberedFrame() ) );
   EXPECT_EQ( before->sendErrors(), 1u );
   EXPECT_EQ( before->lastSendError(), ENETDOWN );
   activity.runFor( 0.03 );
   EXPECT_EQ( before->receiveErrors(), 1u );
   EXPECT_LE( activity.wakeUps() - wakeUps, 10u );
   run( "ip link set va up" );
   EXPECT_TRUE( carries() );
   EXPECT_EQ( pams->changes, "+va" ); // the same still
}

TEST_F( LinuxPam, ofAnInterfaceThatComesBackUnderItsNameIsAnotherOne ) {
   Korv::Ptr< Pam > const dead( pam() );
   run( "ip link del va" );
   ASSERT_TRUE( runUntil( [&] { return pams->changes == "+va-va"; } ) );
   dead->txPkt( pkt( numberedFrame() ) );
   EXPECT_EQ( dead->lastSendError(), ENXIO );
   std::string const comes = "ip link add name va type veth peer name vb && ip link set va up && "
                             "ip link set vb up";
   run( comes );
   ASSERT_TRUE( runUntil( [&] { return pams->changes == "+va-va+va"; } ) );
   EXPECT_TRUE( carries() );
   // Both changes between two looks at the kernel.
   run( "ip link del va && " + comes );
   ASSERT_TRUE( runUntil( [&] { return pams->changes == "+va-va+va-va+va"; } ) );
   EXPECT_TRUE( carries() );
}

TEST_F( LinuxPam, isForEthernetAlone ) {
   if ( std::system( "ip tuntap add name t0 mode tun 2> /dev/null" ) != 0 ) {
      GTEST_SKIP() << "no tun devices here";
   }
   Pelk::IntfId const t0( "t0" );
   EXPECT_EQ( interfaceProblem( t0 ).kind, InterfaceProblem::Kind::notEthernet );
   host->interfaceIs( t0 );
   EXPECT_FALSE( host->network()->hasDevice( t0 ) );
}

} // namespace
} // namespace Linux
