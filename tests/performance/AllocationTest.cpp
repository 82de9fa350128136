// What costs no allocation once it is warm: a neighbour that repeats what is registered, however
// much that is; frames, timers, and records of the ring.
#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/sornlog/RingFile.h"

#include "tests/performance/Heap.h"
#include "tests/support/Participant.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

namespace Performance {
namespace {

using namespace TestSupport;

constexpr char const * port = "Ethernet1";

// Stream ids without neighbours, in no order.
std::vector< U64 > scatteredStreams( std::size_t count ) {
   std::vector< U64 > streams;
   for ( U64 i = 1; i <= count; ++i ) {
      U64 const mixed = i * 0x9E37'79B9'7F4A'7C15;
      streams.push_back( mixed ^ ( mixed >> 32 ) );
   }
   return streams;
}

// A vector for each stream, a hundred to a frame.
template < class MakeVector >
std::vector< Bytes > framesOf( std::vector< U64 > const & streams, MakeVector makeVector ) {
   std::vector< Bytes > frames;
   for ( std::size_t from = 0; from < streams.size(); from += 100 ) {
      std::vector< Vector > vectors;
      for ( std::size_t i = from; i < std::min( from + 100, streams.size() ); ++i ) {
         vectors.push_back( makeVector( streams[i] ) );
      }
      frames.push_back( msrpFrame( Message( vectors ) ) );
   }
   return frames;
}

struct Case {
   char const * name;
   Mrp::MrpApplication application;
   std::vector< Bytes > frames;
   U8 type;
   std::size_t attributes;
};

std::vector< Case > cases() {
   std::vector< U64 > const streams = scatteredStreams( 1000 );
   std::vector< Event > const allVlans( 4094, JoinIn );
   auto const talker = []( U64 id ) { return talkers( id, { JoinIn } ); };
   auto const failed = []( U64 id ) {
      return failedTalkers( { TestSupport::talker( id ) }, { JoinIn } );
   };
   auto const listener = []( U64 id ) { return listeners( id, { { JoinIn, Ready } } ); };
   return {
      { "VLANs", Mrp::MVRP, { mvrpFrame( vlans( 1, allVlans ) ) }, vlanType, 4094 },
      { "talkers", Mrp::MSRP, framesOf( streams, talker ), talkerType, 1000 },
      { "failed talkers", Mrp::MSRP, framesOf( streams, failed ), failedType, 1000 },
      { "listeners", Mrp::MSRP, framesOf( streams, listener ), listenerType, 1000 },
      { "domains",
        Mrp::MSRP,
        { msrpFrame( domains( { 5, 2, 2 }, { JoinIn, JoinIn } ) ) },
        domainType,
        2 },
   };
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
      for ( int warmUp = 0; warmUp < 3; ++warmUp ) {
         refresh();
      }
      auto const joins = participant.counters().numOfJoinIndications();
      unsigned long const before = heap().allocations;
      for ( int round = 0; round < 10; ++round ) {
         refresh();
      }
      EXPECT_GT( before - atFirst, 0u ) << "the count misses something";
      EXPECT_EQ( heap().allocations - before, 0u );
      EXPECT_EQ( participant.counters().numOfJoinIndications() - joins, 10 * c.attributes );
   }
}

// Of one more round, after ten.
template < class F >
unsigned long allocationsOfARound( F && round ) {
   for ( int i = 0; i < 10; ++i ) {
      round();
   }
   unsigned long const before = heap().allocations;
   round();
   return heap().allocations - before;
}

TEST( Allocation, receivingAndSendingMakesNone ) {
   Memory::Host host;
   Pelk::IntfId const intfId( "quiet0" );
   host.interfaceIs( intfId );
   auto const pam = host.network()->newPam( intfId, {} );
   Bytes const frame( 1400, 1 ), shorter( 60, 1 );
   EXPECT_EQ( allocationsOfARound( [&] {
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

TEST( Allocation, aRecordOfTheRingMakesNone ) {
   std::string const path = testing::TempDir() + "mrp-quiet-ring";
   {
      static constexpr Sornlog::Site site{ 8, "on % at ", "pi" };
      Sornlog::RingFile ring( path, 4 );
      Sornlog::fileIs( &ring );
      EXPECT_EQ( allocationsOfARound( [] { Sornlog::log( site, "eth0", 1 ); } ), 0u );
      Sornlog::fileIs( nullptr );
   }
   std::remove( path.c_str() );
}

} // namespace
} // namespace Performance
