#include "mrp/vocabulary/VectorFormat.h"

#include "tests/support/Capture.h"

#include <gtest/gtest.h>

#include <vector>

namespace Mrp {
namespace {

struct Vector {
   explicit Vector( unsigned header )
      : bytes{ static_cast< U8 >( header >> 8 ), static_cast< U8 >( header ) } {}
   U8 bytes[2];
};

TEST( VectorFormat, valuesAreTheLow13Bits ) {
   EXPECT_EQ( mrpGetNumOfValues( Vector( 0x0000 ).bytes ), 0 );
   EXPECT_EQ( mrpGetNumOfValues( Vector( 0x2001 ).bytes ), 1 );
   EXPECT_EQ( mrpGetNumOfValues( Vector( 0xE001 ).bytes ), 1 );
   EXPECT_EQ( mrpGetNumOfValues( Vector( 0xFFFF ).bytes ), 8191 );
   EXPECT_EQ( mrpGetNumOfValues( Vector( 0x0100 ).bytes ), 256 );
}

TEST( VectorFormat, sizeOfAVlanVector ) {
   struct {
      unsigned header;
      U16 size;
   } const cases[] = {
      { 0x0000, 0 }, // an EndMark and no vector
      { 0xC000, 0 }, // bits 15 and 14 are no LeaveAll
      { 0x2000, 4 }, // a lone LeaveAll has no events
      { 1, 5 },      { 3, 5 }, { 4, 6 }, { 0x2004, 6 }, { 6, 6 }, { 7, 7 }, { 0x1FFF, 2735 },
   };
   for ( auto const & c : cases ) {
      EXPECT_EQ( mvrpGetSizeOfVector( Vector( c.header ).bytes ), c.size ) << c.header;
   }
}

// What is told to trace and ring buffer during one test.
class SizeTest : public testing::Test {
 protected:
   using Lines = std::vector< std::string >;
   TestSupport::TraceCapture const traces{ 1u << 8 };
   TestSupport::RingCapture ring;
};

TEST_F( SizeTest, isThatOfTheRecordAndSilent ) {
   EXPECT_EQ( mrpSizeOfAttribute( talkerAdvertise, MSRP ), 25 );
   EXPECT_EQ( mrpSizeOfAttribute( talkerFailed, MSRP ), 34 );
   EXPECT_EQ( mrpSizeOfAttribute( listenerVector, MSRP ), 8 );
   EXPECT_EQ( mrpSizeOfAttribute( domainVector, MSRP ), 4 );
   EXPECT_EQ( mrpSizeOfAttribute( vlanVector, MVRP ), 2 );
   EXPECT_EQ( ring.taken(), Lines() );
   EXPECT_EQ( traces.lines(), Lines() );
}

TEST_F( SizeTest, unknownTypesAndApplicationsHaveNone ) {
   EXPECT_EQ( mrpSizeOfMsrpAttribute( 0 ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 5, MSRP ), 0 );
   EXPECT_EQ( mrpSizeOfMvrpAttribute( 0 ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 2, MVRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, MMRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, 258 ), 0 ); // whose low byte is that of MVRP
   Lines const said{ " Invalid attribute type: 0",   " Invalid attribute type: 5",
                     " Invalid attribute type: 0",   " Invalid attribute type: 2",
                     " Invalid application type: 3", " Invalid application type: 258" };
   EXPECT_EQ( ring.taken(), said );
   EXPECT_EQ( traces.lines(), said );
}

} // namespace
} // namespace Mrp
