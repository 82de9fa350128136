#include "mrp/platform/memory/Wire.h"

#include "mrp/platform/memory/Network.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/platform/Timers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace Memory {
namespace {

// Hosts called a, b, c, each with one device and a Pam on it that reads each frame as it comes.
class WireTest : public testing::Test {
 protected:
   struct End : Pelk::Pam::Reactor {
      End( WireTest & t, std::string n ) : test( t ), name( std::move( n ) ) {
         network = new Network( name );
         device = network->deviceIs( Pelk::IntfId( "wire " + name ) );
         open();
      }
      void open() {
         pam = network->newPam( device->intfId(), {} );
         notifierIs( pam.ptr() );
      }
      void onReadableCount() override {
         auto const pkt = pam->rxPkt();
         ASSERT_TRUE( pkt );
         test.heard.push_back(
            name + " " + std::string( pkt->frontData() + 14, pkt->frontData() + pkt->bytes() ) );
         test.times.push_back( Korv::now() );
      }
      void send( std::string const & text ) {
         auto const pkt = Pelk::globalPktManager().newPkt();
         pkt->newSharedHeadData( 14 + text.size() );
         std::copy( text.begin(), text.end(), pkt->frontData() + 14 );
         pam->txPkt( pkt );
      }
      WireTest & test;
      std::string name;
      Korv::Ptr< Network > network;
      Korv::Ptr< Device > device;
      Korv::Ptr< Pelk::EthDevPam > pam;
   };
   using Texts = std::vector< std::string >;

   End & end( std::string const & name ) {
      return ends_.try_emplace( name, *this, name ).first->second;
   }
   void join( Wire & wire, std::string const & names ) {
      for ( char const name : names ) {
         wire.join( end( std::string( 1, name ) ).device );
      }
   }

   VirtualActivity activity;
   Texts heard;
   std::vector< Korv::Seconds > times;

 private:
   std::map< std::string, End > ends_;
};

TEST_F( WireTest, framesArriveAfterTheDelayInTheOrderOfSendingOverAllWires ) {
   Wire slow, other;
   join( slow, "ab" );
   join( other, "cd" );
   slow.delayIs( 0.1 );
   other.delayIs( 0.1 );
   activity.advanceTo( 0.2 );
   end( "a" ).send( "1" );
   end( "c" ).send( "2" );
   end( "a" ).send( "3" );
   activity.advanceTo( 0.25 );
   end( "b" ).send( "4" );
   activity.advanceTo( 1 );
   EXPECT_EQ( heard, ( Texts{ "b 1", "d 2", "b 3", "a 4" } ) );
   EXPECT_EQ( times, ( std::vector< Korv::Seconds >{ 0.3, 0.3, 0.3, 0.35 } ) );
}

TEST_F( WireTest, aFrameArrivesBehindTheTimersOfItsTime ) {
   Wire wire;
   join( wire, "ab" );
   wire.delayIs( 0.3 );
   end( "a" ).send( "frame" );
   Platform::Timer review( [&] { heard.emplace_back( "review" ); }, Korv::Clock::Rank::review );
   review.timeMinIs( 0.3 );
   activity.advanceTo( 0.3 );
   EXPECT_EQ( heard, ( Texts{ "review", "b frame" } ) );
}

TEST_F( WireTest, theJudgeDropsRepeatsAndDelays ) {
   Wire wire;
   join( wire, "abc" );
   int frames = 0;
   wire.judgeIs( [&]( Device const & from, FrameBytes frame ) {
      EXPECT_EQ( &from, end( "a" ).device.ptr() );
      EXPECT_EQ( frame.size(), 15u );
      Wire::Fate const fates[] = { { 1, 0.5 }, { 0, 0 }, { 2, 0 }, {} };
      return fates[frames++];
   } );
   for ( char const * const text : { "1", "2", "3", "4" } ) {
      end( "a" ).send( text );
   }
   activity.advanceTo( 1 );
   EXPECT_EQ( heard, ( Texts{ "b 3", "c 3", "b 3", "c 3", "b 4", "c 4", "b 1", "c 1" } ) );
   EXPECT_EQ( times.back(), 0.5 );
}

TEST_F( WireTest, takesItsFramesWithIt ) {
   {
      Wire wire;
      join( wire, "ab" );
      wire.delayIs( 1 );
      end( "a" ).send( "1" );
   }
   end( "a" ).send( "2" );
   activity.advanceTo( 3 );
   EXPECT_EQ( heard, Texts{} );
   EXPECT_EQ( activity.nextTime(), Korv::never );
}

} // namespace
} // namespace Memory
