// What must allocate nothing once it is warm.
#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/memory/Network.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include "tests/platform/Allocations.h"

#include <gtest/gtest.h>

#include <deque>

namespace Platform {
namespace {

// Of one more round, after ten.
template < class F >
unsigned long allocationsOfARound( F && round ) {
   for ( int i = 0; i < 10; ++i ) {
      round();
   }
   unsigned long const before = allocations();
   round();
   return allocations() - before;
}

TEST( NoAllocation, receivingAndSending ) {
   Korv::Ptr< Memory::Network > const network = new Memory::Network( "net" );
   Pelk::IntfId const intfId( "quiet0" );
   network->deviceIs( intfId );
   auto const pam = network->newPam( intfId, {} );
   Memory::Frame const frame( 1400, 1 ), shorter( 60, 1 );
   Memory::Device & device = *network->device( intfId );
   EXPECT_EQ( allocationsOfARound( [&] {
                 device.pam()->deliver( frame );
                 device.pam()->deliver( shorter );
                 auto const first = pam->rxPkt();
                 auto const second = pam->rxPkt();
                 auto const answer = Pelk::globalPktManager().newPkt();
                 answer->newSharedHeadData( 1515 );
                 pam->txPkt( answer );
              } ),
              0u );
}

TEST( NoAllocation, armingAndFiringTimers ) {
   Memory::VirtualActivity activity;
   Korv::Ptr< Dovr::TimerWheel > const wheel =
      new Dovr::TimerWheel( nullptr, activity.clock(), 100, 60000, true, 1024 );
   std::deque< Dovr::TimerWheel::Reactor > timers;
   for ( int i = 0; i < 5000; ++i ) {
      timers.emplace_back( wheel );
   }
   EXPECT_EQ( allocationsOfARound( [&] {
                 double later = 0;
                 for ( auto & timer : timers ) {
                    timer.timeMinIs( Korv::now() + 0.5 + later ); // over 500 ticks
                    later += 0.01;
                 }
                 activity.advanceBy( 20 );
              } ),
              0u );
}

} // namespace
} // namespace Platform
