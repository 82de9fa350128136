// Packet access in memory: from a wish to a Pam, and frames that wait in it and travel on wires.
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/memory/Wire.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/platform/HostPams.h"
#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

namespace Memory {
namespace {

Pelk::IntfId const one( "one" ), two( "two" );

TEST( PamManager, aPamComesAndGoesWithTheWishAndTheDevice ) {
   Host host;
   Platform::HostPams pams( host );
   host.interfaceIs( one );
   pams.desired->intfDesiredIs( one, true );
   EXPECT_EQ( pams.changes(), "" ); // not enabled
   pams.manager->rxQueueFramesIs( 2 );
   pams.manager->enabledIs( true );
   EXPECT_EQ( host.pam( one )->settings().rxQueueFrames, 2u );
   pams.desired->intfDesiredIs( one, true );
   pams.desired->intfDesiredIs( two, true );
   EXPECT_EQ( pams.changes(), "+one" );
   host.interfaceIs( two );
   host.interfaceDel( two );
   host.interfaceIs( two );
   EXPECT_EQ( pams.changes(), "+two-two+two" );
   EXPECT_EQ( pams.collection->intfPam( two ), host.pam( two ) );
   pams.desired->intfDesiredIs( one, false );
   EXPECT_EQ( host.pam( one ), nullptr ); // closed, too
   pams.desired->intfDesiredIs( one, true );
   pams.desired->intfDesiredDel( two );
   pams.manager->enabledIs( false );
   EXPECT_EQ( pams.changes(), "-one+one-two-one" );
}

// A device with a Pam, whose reader does what it is told.
struct End : Pelk::Pam::Reactor {
   explicit End( Korv::U32 rxQueueFrames = 0 ) {
      KernelNetInfo::PamSettings settings;
      settings.rxQueueFrames = rxQueueFrames;
      pam = network->newPam( one, settings );
      notifierIs( pam.ptr() );
   }
   void onReadableCount() override {
      if ( action ) {
         action();
      }
   }
   // The last byte of the next frame.
   Pelk::U8 read() {
      auto const pkt = pam->rxPkt();
      return pkt->frontData()[pkt->bytes() - 1];
   }

   Korv::Ptr< Network > network = new Network( "net" );
   Korv::Ptr< Device > device = network->deviceIs( one );
   Korv::Ptr< Pelk::EthDevPam > pam;
   std::function< void() > action;
};

TEST( MemoryPam, losesFramesBeyondItsQueueAndRuntsAndKeepsTheOrderOfOthers ) {
   End end( 20 );
   Pelk::U8 sent = 0, read = 0;
   auto const send = [&] { return end.device->deliver( Frame( 20, sent++ ) ); };
   for ( int waiting = 1; waiting <= 20; ++waiting ) { // as the queue grows on its way round
      EXPECT_TRUE( send() );
      EXPECT_EQ( end.read(), read++ );
      EXPECT_TRUE( send() );
   }
   EXPECT_FALSE( send() );
   EXPECT_FALSE( end.device->deliver( Frame( 13 ) ) );
   EXPECT_FALSE( end.device->deliverPastFilter( Frame( 13 ) ) );
   EXPECT_EQ( end.device->pam()->overrun(), 1u );
   EXPECT_EQ( end.device->pam()->heldBack(), 2u );
   while ( read < 40 ) {
      ASSERT_EQ( end.read(), read++ );
   }
   EXPECT_FALSE( end.pam->rxPkt() );
}

TEST( MemoryPam, aReaderMayCloseThePamsThatWereToHearTheSame ) {
   End end;
   auto second = end.network->newPam( one, {} );
   end.action = [&] {
      second = nullptr;
      end.network->deviceDel( one );
      end.device = nullptr;
      end.pam = nullptr;
   };
   EXPECT_TRUE( end.device->deliver( Frame( 60, 1 ) ) );
   EXPECT_FALSE( end.pam );
}

TEST( Wire, framesArriveAfterTheDelayBehindTheTimersInTheOrderOfSending ) {
   VirtualActivity activity;
   End sender, receiver;
   Wire wire;
   wire.join( sender.device );
   std::string heard;
   receiver.action = [&] { heard += static_cast< char >( receiver.read() ); };
   auto const send = [&]( char letter ) {
      auto const pkt = Pelk::globalPktManager().newPkt();
      pkt->newSharedHeadData( 15 );
      pkt->frontData()[14] = static_cast< Pelk::U8 >( letter );
      sender.pam->txPkt( pkt );
   };
   Platform::Timer review( [&] { heard += " review "; }, Korv::Clock::Rank::review );
   {
      Wire second;
      second.join( sender.device );
      for ( Wire * const each : { &wire, &second } ) {
         each->join( receiver.device );
         each->delayIs( 0.1 );
      }
      send( 'a' );
      send( 'b' );
      review.timeMinIs( 0.1 );
      activity.advanceTo( 0.05 );
      send( 'c' );
      activity.advanceTo( 0.099 );
      EXPECT_EQ( heard, "" );
      activity.advanceTo( 0.1 );
      EXPECT_EQ( heard, " review aabb" );
   } // takes its frames with it
   activity.advanceTo( 1 );
   EXPECT_EQ( heard, " review aabbc" );
}

} // namespace
} // namespace Memory
