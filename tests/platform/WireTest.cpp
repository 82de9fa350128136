#include "mrp/platform/memory/Wire.h"

#include "mrp/platform/memory/Network.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Memory {
namespace {

// Hosts, each with one device and a Pam on it that reads each frame as it comes.
class WireTest : public testing::Test {
 protected:
   struct End : Pelk::Pam::Reactor {
      End( WireTest & t, char n ) : test( t ), name( n ) { notifierIs( pam.ptr() ); }
      void onReadableCount() override {
         auto const pkt = pam->rxPkt();
         test.heard += std::string( " " ) + name + static_cast< char >( pkt->frontData()[14] );
      }
      void send( char letter ) {
         auto const pkt = Pelk::globalPktManager().newPkt();
         pkt->newSharedHeadData( 15 );
         pkt->frontData()[14] = static_cast< Pelk::U8 >( letter );
         pam->txPkt( pkt );
      }
      WireTest & test;
      char name;
      Pelk::IntfId const intfId{ std::string( "wire " ) + name };
      Korv::Ptr< Network > network = new Network( "net" );
      Korv::Ptr< Device > device = network->deviceIs( intfId );
      Korv::Ptr< Pelk::EthDevPam > pam = network->newPam( intfId, {} );
   };
   // " b1 d2": who has heard what, by then.
   std::string heardUntil( Korv::Seconds time ) {
      activity.advanceTo( time );
      return std::exchange( heard, {} );
   }

   VirtualActivity activity;
   std::string heard;
   End a{ *this, 'a' }, b{ *this, 'b' }, c{ *this, 'c' }, d{ *this, 'd' };
};

TEST_F( WireTest, framesArriveAfterTheDelayInTheOrderOfSendingOverAllWires ) {
   Wire one;
   one.join( a.device );
   one.join( b.device );
   one.delayIs( 0.1 );
   {
      Wire other;
      other.join( c.device );
      other.join( d.device );
      other.delayIs( 0.1 );
      activity.advanceTo( 0.2 );
      a.send( '1' );
      c.send( '2' );
      a.send( '3' );
      Platform::Timer review( [&] { heard += " review"; }, Korv::Clock::Rank::review );
      review.timeMinIs( 0.3 );
      activity.advanceTo( 0.25 );
      b.send( '4' );
      EXPECT_EQ( heardUntil( 0.299 ), "" );
      EXPECT_EQ( heardUntil( 0.3 ), " review b1 d2 b3" );
      c.send( '5' );
   } // takes its frames with it
   EXPECT_EQ( heardUntil( 1 ), " a4" );
}

} // namespace
} // namespace Memory
