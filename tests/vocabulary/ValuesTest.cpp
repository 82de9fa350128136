// Keys and values: their bytes on the wire and their text, both written out here, since they are
// what neighbours, users and other programs read; their order and their bounds.
#include "tests/support/Values.h"

#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Mrp {
namespace {

using TestSupport::Bytes;

// Exactly that text, both ways.
template < class T >
void expectText( T const & value, std::string const & text ) {
   EXPECT_EQ( stringValue( value ), text );
   EXPECT_EQ( Korv::fromText< T >( text ), value );
   EXPECT_THROW( Korv::fromText< T >( text + " " ), Korv::RangeException );
   EXPECT_THROW( Korv::fromText< T >( " " + text ), Korv::RangeException );
}

// Those bytes, both ways, and at an odd address, as in a frame.
template < class T >
void expectBytes( T const & record, std::string const & bytes ) {
   Bytes frame( 1 + sizeof record );
   std::memcpy( frame.data() + 1, &record, sizeof record );
   EXPECT_EQ( TestSupport::hex( Bytes( frame.begin() + 1, frame.end() ) ), bytes );
   EXPECT_EQ( *reinterpret_cast< T const * >( frame.data() + 1 ), record );
}

// What is said tells the field, and the record's field that it is in.
template < class T >
void expectFailure( std::string const & text, std::string const & words ) {
   try {
      Korv::fromText< T >( text );
      ADD_FAILURE() << "was read: " << text;
   } catch ( Korv::RangeException const & failure ) {
      EXPECT_NE( std::string( failure.what() ).find( words ), std::string::npos ) << failure.what();
   }
}

Pelk::IntfId const et1( "et1" );
// A different byte in each place, so that a field out of place or out of order shows.
MsrpTalkerAdvertiseAttribute const talker( 0x0102030405060708,
                                           { { 0x11, 0x12, 0x13, 0x14, 0x15, 0x16 }, 0x2122 },
                                           { 0x3132, 0x3334 }, { 5, true }, 0x41424344 );
std::string const talkerText =
   "Value('Mrp::MsrpTalkerAdvertiseAttribute', ** {'streamId': 72623859790382856, 'frame': "
   "Value('Mrp::DataFrameParameters', ** {'dmac': 11:12:13:14:15:16, 'vlanId': 8482}), 'tSpec': "
   "Value('Mrp::Tspec', ** {'maxFrameSize': 12594, 'maxIntervalFrames': 13108}), "
   "'priorityAndRank': 176, 'accumulatedLatency': 1094861636})";

TEST( Values, haveTheirBytesAndTheirText ) {
   MsrpTalkerFailedAttribute const failed( talker, { 0x5152535455565758, 0x59 } );
   expectBytes( failed, "01 02 03 04 05 06 07 08 11 12 13 14 15 16 21 22 31 32 33 34 b0 "
                        "41 42 43 44 51 52 53 54 55 56 57 58 59" );
   expectText(
      failed,
      "Value('Mrp::MsrpTalkerFailedAttribute', ** {'talkerAdvertiseAttribute': " + talkerText +
         ", 'failureInformation': Value('Mrp::FailureInformation', ** {'bridgeId': "
         "5859837686836516696, 'failureCode': 89})})" );
   MsrpDomainAttribute const domain( 6, 3, 0x0fa2 );
   expectBytes( domain, "06 03 0f a2" );
   expectText( domain, "Value('Mrp::MsrpDomainAttribute', ** {'srClassId': 6, 'srClassPriority': "
                       "3, 'srClassVID': 4002})" );
   // Of memory: the declaration's least significant byte comes first.
   MsrpListenerAttribute const listener( 0x0102030405060708, readyFailed );
   expectBytes( listener, "01 02 03 04 05 06 07 08 03 00 00 00" );
   expectText( listener, "Value('Mrp::MsrpListenerAttribute', ** {'streamId': 72623859790382856, "
                         "'listenerEvent': readyFailed})" );
   expectText( MsrpListenerStreamAttribute( 4711 ), "4711" );
   expectBytes( MvrpVlanAttribute( 0x0123 ), "01 23" );
   expectText( MvrpVlanAttribute( 65535 ), "65535" );
}

TEST( Values, haveAPriorityAndARankInOneByteWithoutItsOtherBits ) {
   U8 const byte = 0x7a;
   auto const & seen = *reinterpret_cast< PriorityAndRank const * >( &byte );
   EXPECT_EQ( seen.priority(), 3 );
   EXPECT_TRUE( seen.rank() );
   EXPECT_EQ( seen.undefined(), 0x0a );

   auto const rebuilt = PriorityAndRank::fromWire( 0x7f );
   EXPECT_EQ( rebuilt.value(), 0x70 );
   EXPECT_EQ( rebuilt, PriorityAndRank( 3, true ) );
   EXPECT_EQ( rebuilt, Korv::fromText< PriorityAndRank >( "127" ) );
   EXPECT_LT( rebuilt, seen );
   EXPECT_LT( seen, PriorityAndRank( 4, false ) );
}

TEST( Keys, haveTheirText ) {
   expectText( MrpAttribute( et1, 3, 0x8000000000000000 ),
               "Value('Mrp::MrpAttribute', ** {'intfId': et1, 'attributeType': 3, 'attributeVal': "
               "9223372036854775808})" );
   MrpParameters parameters( et1, 1, 5 );
   parameters.newEventIs( true );
   expectText( parameters, "Value('Mrp::MrpParameters', ** {'intfId': et1, 'attributeType': 1, "
                           "'attributeEvent': 5, 'newEvent': true})" );
   expectText( MrpParsedAttributeKey( 4, 6 ),
               "Value('Mrp::MrpParsedAttributeKey', ** {'attributeType': 4, 'attributeKey': 6})" );
   expectText( MrpLeaveAllKey( Pelk::IntfId( "a,b}" ), 2 ),
               "Value('Mrp::MrpLeaveAllKey', ** {'intfId': a,b}, 'attributeType': 2})" );
   expectText( MrpAttrIterKey( Pelk::IntfId(), 2 ),
               "Value('Mrp::MrpAttrIter::Key', ** {'intfId': , 'attributeType': 2})" );
}

TEST( Keys, andValuesAreNotReadFromAnythingElse ) {
   expectFailure< MrpLeaveAllKey >(
      "Value('Mrp::MrpLeaveAllKey', ** {'intfId': et1, 'attributeType': 256})",
      "in field 'attributeType'" );
   expectFailure< MvrpVlanAttribute >( "65536", "in field 'vlanId'" );
   std::string inner = talkerText;
   inner.replace( inner.find( "16," ), 2, "1G" );
   expectFailure< MsrpTalkerAdvertiseAttribute >( inner, "in field 'dmac', in field 'frame'" );
   // Another record's form, and fields in another order.
   expectFailure< MrpAttrIterKey >( stringValue( MrpLeaveAllKey( et1, 2 ) ), "" );
   expectFailure< MrpLeaveAllKey >(
      "Value('Mrp::MrpLeaveAllKey', ** {'attributeType': 2, 'intfId': et1})", "" );

   expectText( ValueIndex( 64 ), "64" );
   expectFailure< ValueIndex >(
      "65", "ValueIndex::value < ValueIndex::min or > ValueIndex::max not allowed" );
   expectFailure< ValueIndex >( "320", "" ); // 64 in its low byte
   EXPECT_EQ( Pelk::EthAddr( "01:80:C2:00:00:0E" ), Pelk::EthAddr( 1, 0x80, 0xc2, 0, 0, 0x0e ) );
   for ( char const * text : { "", "01:80:c2:00:00:0", "01:80:c2:00:00:0e:", "01-80-c2-00-00-0e",
                               "0g:80:c2:00:00:0e", "01:80:c2:00:000:e", "0180c200000e" } ) {
      expectFailure< Pelk::EthAddr >( text, "" );
   }
}

// Interfaces are in the order of their first mention.
TEST( Keys, areInOrderFieldByFieldAndNumbersAreUnsigned ) {
   Pelk::IntfId const first( "z-first" );
   Pelk::IntfId const second( "a-second" );
   constexpr U64 topBit = U64{ 1 } << 63;
   std::vector< MrpAttribute > const ascending{ { Pelk::IntfId(), 9, 9 }, { first, 1, 0 },
                                                { first, 1, topBit - 1 }, { first, 1, topBit },
                                                { first, 255, 0 },        { second, 0, 0 } };
   for ( std::size_t i = 1; i < ascending.size(); ++i ) {
      EXPECT_LT( ascending[i - 1], ascending[i] );
   }
   // A published value of the hash function, and one over a number, its least byte first.
   EXPECT_EQ( Korv::hashOf( U8{ 'a' } ), 0xca2e9442u );
   EXPECT_EQ( MrpParsedAttributeKey( 3, 0x8102030405060708 ).hash(), 0xf9889604u );
}

TEST( Interfaces, keepTheirNamesWhereTheyAreAsTheTableGrows ) {
   std::string const & name = Pelk::IntfId( "stays" ).stringValue();
   char const * const text = name.c_str();
   for ( int i = 0; i < 5000; ++i ) {
      std::string const other = "grows" + std::to_string( i );
      ASSERT_EQ( Pelk::IntfId( other ).stringValue(), other );
   }
   EXPECT_EQ( name, "stays" );
   EXPECT_EQ( Pelk::IntfId( "stays" ).stringValue().c_str(), text );
}

} // namespace
} // namespace Mrp
