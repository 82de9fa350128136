#include "mrp/platform/memory/Pam.h"

#include "mrp/platform/memory/Network.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace Memory {
namespace {

// Passes frames that begin with 0x01.
constexpr Pelk::SockFilterInstruction filter[] = {
   { 0x28, 0, 0, 0 }, { 0x15, 0, 1, 0x0101 }, { 0x06, 0, 0, 1 }, { 0x06, 0, 0, 0 } };
Frame const passing( 60, 1 );
Frame const held( 60, 2 );

class PamTest : public testing::Test {
 protected:
   struct Reader : Pelk::Pam::Reactor {
      void onReadableCount() override {
         ++calls;
         if ( action ) {
            action();
         }
      }
      int calls = 0;
      std::function< void() > action;
   };
   PamTest() {
      settings.filterProgram = { 4, filter };
      settings.rxQueueFrames = 3;
      keeper = network->newPam( intfId, settings );
      pam = device->pam();
      reader.notifierIs( keeper.ptr() );
   }

   Pelk::IntfId const intfId{ "pam0" };
   Korv::Ptr< Network > network = new Network( "net" );
   Korv::Ptr< Device > device = network->deviceIs( intfId );
   KernelNetInfo::PamSettings settings;
   Reader reader;
   Korv::Ptr< Pelk::EthDevPam > keeper;
   Pam * pam = nullptr;
};

TEST_F( PamTest, holdsBackWhatTheFilterRejectsUnlessToldTo ) {
   EXPECT_FALSE( pam->deliver( held ) );
   EXPECT_FALSE( pam->deliver( Frame( 13, 1 ) ) ); // runts go nowhere, on no way
   EXPECT_FALSE( pam->deliverPastFilter( Frame( 13, 1 ) ) );
   EXPECT_EQ( pam->heldBack(), 3u );
   EXPECT_EQ( reader.calls, 0 );
   EXPECT_TRUE( pam->deliverPastFilter( held ) );
   EXPECT_TRUE( pam->deliver( Frame( 14, 1 ) ) );
   EXPECT_EQ( pam->readableCount(), 2u );
   EXPECT_TRUE( pam->rxPkt() );
   EXPECT_EQ( pam->readableCount(), 1u );
   EXPECT_EQ( reader.calls, 2 ) << "an arrival calls for a read, taking out for nothing";
}

TEST_F( PamTest, keepsFramesInOrderAndLosesThoseBeyondItsQueue ) {
   Pelk::U8 sent = 0, read = 0;
   auto send = [&] {
      Frame frame( 20, 1 );
      frame.back() = sent++;
      return pam->deliver( frame );
   };
   auto readNext = [&] {
      auto const pkt = pam->rxPkt();
      ASSERT_TRUE( pkt );
      EXPECT_EQ( pkt->frontData()[19], read++ );
   };
   // The queue grows while it is on its way round.
   for ( int waiting = 1; waiting <= 3; ++waiting ) {
      EXPECT_TRUE( send() );
      readNext();
      EXPECT_TRUE( send() );
   }
   EXPECT_FALSE( send() );
   EXPECT_EQ( pam->overrun(), 1u );
   for ( int i = 0; i < 3; ++i ) {
      readNext();
   }
   EXPECT_FALSE( pam->rxPkt() );
}

TEST_F( PamTest, aReaderMayCloseThePamsThatWereToHearTheSame ) {
   auto second = network->newPam( intfId, {} );
   reader.action = [&] {
      second = nullptr;
      network->deviceDel( intfId );
      device = nullptr;
      keeper = nullptr;
   };
   EXPECT_TRUE( device->deliver( passing ) );
   EXPECT_EQ( reader.calls, 1 );
}

TEST_F( PamTest, eachPamOfADeviceHearsTheWireAndNoneTheOthers ) {
   auto const second = network->newPam( intfId, {} );
   std::vector< Frame > left;
   network->onTransmit( [&]( Pelk::IntfId const &, FrameBytes frame ) {
      left.emplace_back( frame.begin(), frame.end() );
   } );
   device->deliver( held );
   EXPECT_FALSE( pam->hasDataOnSocket() );
   auto const pkt = second->rxPkt();
   ASSERT_TRUE( pkt );
   Pelk::U8 head[2] = { 7, 8 };
   pkt->privateHeadIs( head, sizeof head );
   second->txPkt( pkt ); // of two vectors
   Frame expected{ 7, 8 };
   expected.insert( expected.end(), held.begin(), held.end() );
   EXPECT_EQ( left, std::vector< Frame >( 1, expected ) );
   EXPECT_FALSE( pam->hasDataOnSocket() );
}

} // namespace
} // namespace Memory
