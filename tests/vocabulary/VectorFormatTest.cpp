// The fields of a vector, and records as they are seen in a packet.
#include "mrp/vocabulary/VectorFormat.h"

#include "mrp/platform/pelk/PktManager.h"
#include "mrp/vocabulary/Wrappers.h"

#include "tests/support/Capture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Mrp {
namespace {

TEST( VectorFormat, headerGivesNumberAndSize ) {
   struct {
      unsigned header;
      U16 values;
      U16 size; // of a vector of VLANs
   } const table[] = {
      { 0x0000, 0, 0 }, // an EndMark and no vector
      { 0xc000, 0, 0 }, // bits 15 and 14 are no LeaveAll
      { 0x2000, 0, 4 }, // a lone LeaveAll has no events
      { 0x0003, 3, 5 }, { 0x2004, 4, 6 }, { 0x1fff, 8191, 2735 },
   };
   for ( auto const & row : table ) {
      U8 const bytes[] = { static_cast< U8 >( row.header >> 8 ), static_cast< U8 >( row.header ) };
      EXPECT_EQ( mrpGetNumOfValues( bytes ), row.values ) << row.header;
      EXPECT_EQ( mvrpGetSizeOfVector( bytes ), row.size ) << row.header;
   }
}

TEST( VectorFormat, unknownTypesAndApplicationsHaveNoSize ) {
   TestSupport::TraceCapture const traces( 1u << 8 );
   TestSupport::RingCapture ring;
   EXPECT_EQ( mrpSizeOfAttribute( domainVector, MSRP ), 4 ); // and nothing is said
   EXPECT_EQ( mrpSizeOfAttribute( 0, MSRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 5, MSRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 2, MVRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, MMRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, 258 ), 0 ); // whose low byte is that of MVRP
   std::vector< std::string > const said{
      " Invalid attribute type: 0", " Invalid attribute type: 5", " Invalid attribute type: 2",
      " Invalid application type: 3", " Invalid application type: 258" };
   EXPECT_EQ( ring.taken(), said );
   EXPECT_EQ( traces.lines(), said );
}

// It has room where the record would fit, but not the wrapper itself.
TEST( WrappersDeathTest, showTheRecordAtTheirOffsetWhereTheyHaveRoomThemselves ) {
   constexpr U8 message[] = { 3, 8, 0, 13, 0x20, 1, 0, 0, 0, 0, 0, 0, 0, 9 };
   auto const pkt = Pelk::globalPktManager().newPkt();
   pkt->newSharedHeadData( 100 ); // of zeros
   std::copy( std::begin( message ), std::end( message ), pkt->frontData() + 3 );
   EXPECT_EQ( msrpMessageHeaderWrapperFactory( pkt, 3 )->attributeListLength(), 13 );
   EXPECT_EQ( msrpListenerVectorWrapperFactory( pkt, 7 )->firstValue().streamId(), 9u );
   EXPECT_THROW( msrpTalkerVectorWrapperFactory( nullptr, 0 ), Korv::RangeException );

   U32 const last = 100 - sizeof( MvrpVlanVectorWrapper );
   EXPECT_TRUE( mvrpVlanVectorWrapperFactory( pkt, last ) );
   EXPECT_DEATH( mvrpVlanVectorWrapperFactory( pkt, last + 1 ),
                 "\\( offset_ \\+ sizeof\\( MvrpVlanVectorWrapper \\) \\) <= "
                 "pkt_->frontBytes\\(\\)" );
   EXPECT_DEATH( msrpMessageHeaderWrapperFactory( pkt, ~0u ), "MsrpMessageHeaderWrapper" );
}

} // namespace
} // namespace Mrp
