#include "mrp/vocabulary/VectorFormat.h"

#include "tests/support/Capture.h"

#include <gtest/gtest.h>

#include <vector>

namespace Mrp {
namespace {

TEST( VectorFormat, headerGivesNumberAndSize ) {
   struct Row {
      unsigned header;
      U16 values;
      U16 size; // of a vector of VLANs
   };
   for ( Row const & row : {
            Row{ 0x0000, 0, 0 }, // an EndMark and no vector
            { 0xC000, 0, 0 },    // bits 15 and 14 are no LeaveAll
            { 0x2000, 0, 4 },    // a lone LeaveAll has no events
            { 1, 1, 5 },
            { 3, 3, 5 },
            { 0x2004, 4, 6 },
            { 0xE100, 256, 90 },
            { 0x1FFF, 8191, 2735 },
         } ) {
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

} // namespace
} // namespace Mrp
