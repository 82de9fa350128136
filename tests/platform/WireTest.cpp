#include "mrp/platform/memory/Wire.h"

#include "mrp/platform/memory/Network.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace Memory {
namespace {

// Hosts called a, b, c, each with one device and a Pam on it that reads each frame as it comes.
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

   End & end( char name ) { return ends_.try_emplace( name, *this, name ).first->second; }
   void join( Wire & wire, std::string const & names ) {
      for ( char const name : names ) {
         wire.join( end( name ).device );
      }
   }
   // " b1 d2": who has heard what, by then.
   std::string heardUntil( Korv::Seconds time ) {
      activity.advanceTo( time );
      return std::exchange( heard, {} );
   }

   VirtualActivity activity;
   std::string heard;

 private:
   std::map< char, End > ends_;
};

TEST_F( WireTest, framesArriveAfterTheDelayInTheOrderOfSendingOverAllWires ) {
   Wire one;
   join( one, "ab" );
   one.delayIs( 0.1 );
   {
      Wire other;
      join( other, "cd" );
      other.delayIs( 0.1 );
      activity.advanceTo( 0.2 );
      end( 'a' ).send( '1' );
      end( 'c' ).send( '2' );
      end( 'a' ).send( '3' );
      Platform::Timer review( [&] { heard += " review"; }, Korv::Clock::Rank::review );
      review.timeMinIs( 0.3 );
      activity.advanceTo( 0.25 );
      end( 'b' ).send( '4' );
      EXPECT_EQ( heardUntil( 0.299 ), "" );
      EXPECT_EQ( heardUntil( 0.3 ), " review b1 d2 b3" );
      end( 'c' ).send( '5' );
   } // takes its frames with it
   EXPECT_EQ( heardUntil( 1 ), " a4" );
}

TEST_F( WireTest, theJudgeDropsRepeatsAndDelays ) {
   Wire wire;
   join( wire, "abc" );
   int frames = 0;
   wire.judgeIs( [&]( Device const & from, FrameBytes frame ) {
      EXPECT_EQ( &from, end( 'a' ).device.ptr() );
      EXPECT_EQ( frame.size(), 15u );
      Wire::Fate const fates[] = { { 1, 0.5 }, { 0, 0 }, { 2, 0 }, {} };
      return fates[frames++];
   } );
   for ( char const letter : { '1', '2', '3', '4' } ) {
      end( 'a' ).send( letter );
   }
   EXPECT_EQ( heardUntil( 0.499 ), " b3 c3 b3 c3 b4 c4" );
   EXPECT_EQ( heardUntil( 0.5 ), " b1 c1" );
}

} // namespace
} // namespace Memory
