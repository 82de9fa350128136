// What an attribute takes once it is committed: its place in the tree and in all indexes.
#include "tests/performance/Heap.h"
#include "tests/support/Participant.h"

#include <gtest/gtest.h>

namespace Performance {
namespace {

using namespace TestSupport;

TEST( Memory, aCommittedVlanTakesAtMost200Bytes ) {
   constexpr std::size_t ports = 64, vlansOfAPort = 4094;
   std::vector< std::string > names;
   for ( std::size_t i = 1; i <= ports; ++i ) {
      names.push_back( "Ethernet" + std::to_string( i ) );
   }
   Participant mvrp( Mrp::MVRP, names );
   mvrp.config().leaveAllTimeIs( 1e6 );
   mvrp.recordingIs( false );
   Bytes const frame = mvrpFrame( vlans( 1, std::vector< Event >( vlansOfAPort, JoinIn ) ) );
   mvrp.advanceBy( 1 );

   std::size_t const before = heap().bytes;
   for ( std::string const & name : names ) {
      mvrp.receive( name, frame );
   }
   mvrp.advanceBy( 2 );
   ASSERT_TRUE( mvrp.sm().addPendingAttr().empty() );
   ASSERT_TRUE( mvrp.attribute( names.back(), vlansOfAPort )->committed );
   std::size_t const taken = heap().bytes - before;
   std::size_t const perVlan = taken / ( ports * vlansOfAPort );
   EXPECT_LE( perVlan, 200u );
   EXPECT_GT( perVlan, sizeof( Mrp::MrpAttrDatabase ) ) << "the count misses something";
   RecordProperty( "bytesPerVlan", std::to_string( perVlan ) );

   // And gives it back.
   for ( std::string const & name : names ) {
      mvrp.lib().mrpCleanUpIntfDatabase( Pelk::IntfId( name ) );
   }
   mvrp.advanceBy( 10 );
   EXPECT_FALSE( mvrp.attribute( names.front(), 1 ) );
   EXPECT_LE( heap().bytes - before, taken / 10 );
}

} // namespace
} // namespace Performance
