// Packet access in memory: frames that wait in a Pam and travel on wires.
#include "mrp/platform/memory/Network.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/memory/Wire.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace Memory {
namespace {

Pelk::IntfId const one( "one" );

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

TEST( Wire, framesArriveAfterTheDelayBehindTheTimersAndGoWithTheWire ) {
   VirtualActivity activity;
   End sender, receiver;
   std::optional< Wire > wire( std::in_place );
   wire->join( sender.device );
   wire->join( receiver.device );
   wire->delayIs( 0.1 );
   std::string heard;
   receiver.action = [&] { heard += static_cast< char >( receiver.read() ); };
   auto const send = [&]( Pelk::U8 letter ) {
      Frame frame( 14 );
      frame.push_back( letter );
      sender.pam->txPkt( Pelk::receivePool().newPkt( frame.data(), frame.size() ) );
   };
   Platform::Timer review( [&] { heard += "review "; }, Korv::Clock::Rank::review );
   send( 'a' );
   send( 'b' );
   review.timeMinIs( 0.1 );
   activity.advanceTo( 0.05 );
   send( 'c' );
   activity.advanceTo( 0.099 );
   EXPECT_EQ( heard, "" );
   activity.advanceTo( 0.1 );
   EXPECT_EQ( heard, "review ab" );
   wire.reset();
   activity.advanceTo( 1 );
   EXPECT_EQ( heard, "review ab" );
}

} // namespace
} // namespace Memory
