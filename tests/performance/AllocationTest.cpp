// What costs no allocation once it is warm: a neighbour that repeats what is registered, however
// much that is; frames, timers, and records of the ring.
#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/sornlog/RingFile.h"

#include "tests/performance/Heap.h"
#include "tests/support/Participant.h"

#include <gtest/gtest.h>

#include <deque>

namespace Performance {
namespace {

using namespace TestSupport;

// Of ten rounds, after ten.
template < class F >
unsigned long allocationsOf( F && round ) {
   unsigned long before = 0;
   for ( int i = 0; i < 20; ++i ) {
      before = i == 10 ? heap().allocations : before;
      round();
   }
   return heap().allocations - before;
}

TEST( Allocation, aSteadyRefreshMakesNone ) {
   std::vector< Event > const joins( 2000, JoinIn );
   std::vector< ListenerEvent > const ready( 2000, { JoinIn, Ready } );
   struct Case {
      Mrp::MrpApplication application;
      Bytes frame;
   };
   for ( Case const & each : std::initializer_list< Case >{
            { Mrp::MVRP, mvrpFrame( vlans( 1, joins ) ) },
            { Mrp::MSRP, msrpFrame( talkers( 1, joins ) ) },
            { Mrp::MSRP, msrpFrame( failedTalkers( { talker( 1 ) }, joins ) ) },
            { Mrp::MSRP, msrpFrame( listeners( 1, ready ) ) },
            { Mrp::MSRP, msrpFrame( domains( { 5, 2, 2 }, { JoinIn, JoinIn } ) ) } } ) {
      Decoded const said = decode( each.frame );
      SCOPED_TRACE( said.text().substr( 0, 10 ) );
      Participant participant( each.application );
      participant.config().leaveAllTimeIs( 1e6 );
      participant.recordingIs( false );
      auto const refresh = [&] {
         participant.receive( "Ethernet1", each.frame );
         participant.advanceBy( 0.2 );
      };
      unsigned long const atFirst = heap().allocations;
      refresh();
      EXPECT_GT( heap().allocations, atFirst ) << "the count misses something";
      auto const joined = participant.counters().numOfJoinIndications();
      EXPECT_EQ( allocationsOf( refresh ), 0u );
      EXPECT_EQ( participant.counters().numOfJoinIndications() - joined,
                 20 * said.declared.size() );
   }
}

TEST( Allocation, receivingAndSendingMakesNone ) {
   Memory::Host host;
   Pelk::IntfId const intfId( "quiet0" );
   host.interfaceIs( intfId );
   auto const pam = host.network()->newPam( intfId, {} );
   Bytes const frame( 1400, 1 ), shorter( 60, 1 );
   EXPECT_EQ( allocationsOf( [&] {
                 host.pam( intfId )->deliver( frame );
                 host.pam( intfId )->deliver( shorter );
                 auto const first = pam->rxPkt();
                 auto const second = pam->rxPkt();
                 auto const answer = Pelk::globalPktManager().newPkt();
                 answer->newSharedHeadData( 1515 );
                 pam->txPkt( answer );
              } ),
              0u );
}

TEST( Allocation, armingAndFiringTimersMakesNone ) {
   Memory::VirtualActivity activity;
   Korv::Ptr< Dovr::TimerWheel > const wheel =
      new Dovr::TimerWheel( nullptr, activity.clock(), 100, 60000, true, 1024 );
   std::deque< Dovr::TimerWheel::Reactor > timers;
   for ( int i = 0; i < 5000; ++i ) {
      timers.emplace_back( wheel );
   }
   EXPECT_EQ( allocationsOf( [&] {
                 double later = 0;
                 for ( auto & timer : timers ) {
                    timer.timeMinIs( Korv::now() + 0.5 + later ); // over 500 ticks
                    later += 0.01;
                 }
                 activity.advanceBy( 20 );
              } ),
              0u );
}

TEST( Allocation, aRecordOfTheRingMakesNone ) {
   std::string const path = testing::TempDir() + "mrp-quiet-ring";
   {
      static constexpr Sornlog::Site site{ 8, "on % at ", "pi" };
      Sornlog::RingFile ring( path, 4 );
      Sornlog::fileIs( &ring );
      EXPECT_EQ( allocationsOf( [] { Sornlog::log( site, "eth0", 1 ); } ), 0u );
      Sornlog::fileIs( nullptr );
   }
   std::remove( path.c_str() );
}

} // namespace
} // namespace Performance
