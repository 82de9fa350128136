#include "mrp/platform/memory/Pam.h"

#include "mrp/platform/memory/Network.h"

#include <gtest/gtest.h>

#include <functional>

namespace Memory {
namespace {

TEST( FrameQueue, keepsItsOrderAsItGrowsOnItsWayRound ) {
   FrameQueue queue;
   Pelk::U8 sent = 0, read = 0;
   auto const send = [&] { queue.enq( Frame( 20, sent++ ) ); };
   auto const expectNext = [&] { EXPECT_EQ( queue.deq()[19], read++ ); };
   for ( int waiting = 1; waiting <= 20; ++waiting ) {
      send();
      expectNext();
      send();
   }
   while ( !queue.empty() ) {
      expectNext();
   }
   EXPECT_EQ( read, 40 );
}

TEST( MemoryPam, losesFramesBeyondItsQueueAndRuntsAnyway ) {
   Pelk::IntfId const intfId( "pam0" );
   Korv::Ptr< Network > const network = new Network( "net" );
   Korv::Ptr< Device > const device = network->deviceIs( intfId );
   KernelNetInfo::PamSettings settings;
   settings.rxQueueFrames = 2;
   auto const opened = network->newPam( intfId, settings );
   EXPECT_FALSE( device->deliver( Frame( 13 ) ) );
   EXPECT_FALSE( device->deliverPastFilter( Frame( 13 ) ) );
   EXPECT_TRUE( device->deliver( Frame( 14 ) ) );
   EXPECT_TRUE( device->deliver( Frame( 14 ) ) );
   EXPECT_FALSE( device->deliver( Frame( 14 ) ) );
   EXPECT_EQ( device->pam()->heldBack(), 2u );
   EXPECT_EQ( device->pam()->overrun(), 1u );
}

TEST( MemoryPam, aReaderMayCloseThePamsThatWereToHearTheSame ) {
   Pelk::IntfId const intfId( "pam0" );
   Korv::Ptr< Network > const network = new Network( "net" );
   Korv::Ptr< Device > device = network->deviceIs( intfId );
   struct Reader : Pelk::Pam::Reactor {
      void onReadableCount() override { action(); }
      std::function< void() > action;
   } reader;
   auto first = network->newPam( intfId, {} ), second = network->newPam( intfId, {} );
   reader.notifierIs( first.ptr() );
   reader.action = [&] {
      second = nullptr;
      network->deviceDel( intfId );
      device = nullptr;
      first = nullptr;
   };
   EXPECT_TRUE( device->deliver( Frame( 60, 1 ) ) );
   EXPECT_FALSE( first );
}

} // namespace
} // namespace Memory
