#include "mrp/vocabulary/VectorFormat.h"

#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"

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

TEST( VectorFormat, eventsFillTheirBytes ) {
   auto listener = []( U32 n ) {
      return std::pair( packedBytes( n, eventsPerThreePackedByte ),
                        packedBytes( n, eventsPerFourPackedByte ) );
   };
   EXPECT_EQ( listener( 0 ), std::pair( 0u, 0u ) );
   EXPECT_EQ( listener( 1 ), std::pair( 1u, 1u ) );
   EXPECT_EQ( listener( 3 ), std::pair( 1u, 1u ) );
   EXPECT_EQ( listener( 4 ), std::pair( 2u, 1u ) );
   EXPECT_EQ( listener( 5 ), std::pair( 2u, 2u ) );
   EXPECT_EQ( listener( 8191 ), std::pair( 2731u, 2048u ) );
}

// What is told to trace and ring buffer during one test.
class SizeTest : public testing::Test, public Sornlog::File {
 protected:
   SizeTest() {
      Sornlog::fileIs( this );
      mrpTrace.levelsIs( 1u << 8 );
      Korv::traceSinkIs( []( Korv::TraceHelper const & handle, U32 level, Korv::SourceLocation,
                             std::string const & text ) {
         traced_.push_back( std::string( handle.name() ) + std::to_string( level ) + text );
      } );
   }
   ~SizeTest() override {
      Sornlog::fileIs( nullptr );
      mrpTrace.levelsIs( 0 );
      Korv::traceSinkIs( nullptr );
      traced_.clear();
   }
   void write( Sornlog::Site const & site,
               std::span< Sornlog::Argument const > arguments ) override {
      std::string codes;
      for ( auto const & argument : arguments ) {
         codes += argument.code;
      }
      EXPECT_EQ( codes, site.arguments );
      ring_.push_back( std::to_string( site.level ) + Sornlog::text( site, arguments ) );
   }
   using Lines = std::vector< std::string >;
   Lines ring_;
   static inline Lines traced_;
};

TEST_F( SizeTest, isThatOfTheRecordAndSilent ) {
   EXPECT_EQ( mrpSizeOfAttribute( talkerAdvertise, MSRP ), 25 );
   EXPECT_EQ( mrpSizeOfAttribute( talkerFailed, MSRP ), 34 );
   EXPECT_EQ( mrpSizeOfAttribute( listenerVector, MSRP ), 8 );
   EXPECT_EQ( mrpSizeOfAttribute( domainVector, MSRP ), 4 );
   EXPECT_EQ( mrpSizeOfAttribute( vlanVector, MVRP ), 2 );
   EXPECT_TRUE( ring_.empty() );
   EXPECT_TRUE( traced_.empty() );
}

TEST_F( SizeTest, unknownTypesHaveNone ) {
   EXPECT_EQ( mrpSizeOfMsrpAttribute( 0 ), 0 );
   EXPECT_EQ( mrpSizeOfMsrpAttribute( 5 ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 255, MSRP ), 0 );
   EXPECT_EQ( mrpSizeOfMvrpAttribute( 0 ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 2, MVRP ), 0 );
   EXPECT_EQ( traced_,
              ( Lines{ "Mrp8 Invalid attribute type: 0", "Mrp8 Invalid attribute type: 5",
                       "Mrp8 Invalid attribute type: 255", "Mrp8 Invalid attribute type: 0",
                       "Mrp8 Invalid attribute type: 2" } ) );
   EXPECT_EQ( ring_.size(), 5u );
   EXPECT_EQ( ring_[2], "8 Invalid attribute type: 255" );
}

TEST_F( SizeTest, otherApplicationsHaveNone ) {
   EXPECT_EQ( mrpSizeOfAttribute( 1, MMRP ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, InvalidApplication ), 0 );
   EXPECT_EQ( mrpSizeOfAttribute( 1, 258 ), 0 ); // whose low byte is that of MVRP
   EXPECT_EQ( traced_[0], "Mrp8 Invalid application type: 3" );
   EXPECT_EQ( ring_, ( Lines{ "8 Invalid application type: 3", "8 Invalid application type: 0",
                              "8 Invalid application type: 258" } ) );
}

} // namespace
} // namespace Mrp
