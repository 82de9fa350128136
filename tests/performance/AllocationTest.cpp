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

constexpr char const * port = "Ethernet1";

// A vector for each of a thousand streams without neighbours, in no order; a hundred to a frame.
template < class MakeVector >
std::vector< Bytes > scattered( MakeVector makeVector ) {
   std::vector< Bytes > frames;
   for ( U64 from = 1; from <= 1000; from += 100 ) {
      std::vector< Vector > vectors;
      for ( U64 i = from; i < from + 100; ++i ) {
         U64 const mixed = i * 0x9E37'79B9'7F4A'7C15;
         vectors.push_back( makeVector( mixed ^ ( mixed >> 32 ) ) );
      }
      frames.push_back( msrpFrame( Message( vectors ) ) );
   }
   return frames;
}

struct Case {
   char const * name;
   Mrp::MrpApplication application;
   std::vector< Bytes > frames;
   std::size_t attributes;
};

std::vector< Case > cases() {
   std::vector< Event > const allVlans( 4094, JoinIn );
   auto const talker = []( U64 id ) { return talkers( id, { JoinIn } ); };
   auto const failed = []( U64 id ) {
      return failedTalkers( { TestSupport::talker( id ) }, { JoinIn } );
   };
   auto const listener = []( U64 id ) { return listeners( id, { { JoinIn, Ready } } ); };
   Bytes const domainFrame = msrpFrame( domains( { 5, 2, 2 }, { JoinIn, JoinIn } ) );
   return { { "VLANs", Mrp::MVRP, { mvrpFrame( vlans( 1, allVlans ) ) }, 4094 },
            { "talkers", Mrp::MSRP, scattered( talker ), 1000 },
            { "failed talkers", Mrp::MSRP, scattered( failed ), 1000 },
            { "listeners", Mrp::MSRP, scattered( listener ), 1000 },
            { "domains", Mrp::MSRP, { domainFrame }, 2 } };
}

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
   for ( Case const & c : cases() ) {
      SCOPED_TRACE( c.name );
      Participant participant( c.application, { port } );
      participant.config().leaveAllTimeIs( 1e6 );
      participant.recordingIs( false );
      auto const refresh = [&] {
         for ( Bytes const & frame : c.frames ) {
            participant.receive( port, frame );
         }
         participant.advanceBy( 0.2 );
      };
      unsigned long const atFirst = heap().allocations;
      refresh();
      EXPECT_GT( heap().allocations, atFirst ) << "the count misses something";
      auto const joins = participant.counters().numOfJoinIndications();
      EXPECT_EQ( allocationsOf( refresh ), 0u );
      EXPECT_EQ( participant.counters().numOfJoinIndications() - joins, 20 * c.attributes );
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
