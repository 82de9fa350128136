// Records against bytes written by hand. Values have a different byte in each place, so that a
// field out of place or out of order shows.
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"
#include "mrp/vocabulary/VectorFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Mrp {
namespace {

using Bytes = std::vector< U8 >;

template < class T >
Bytes bytesOf( T const & record ) {
   Bytes bytes( sizeof record );
   std::memcpy( bytes.data(), &record, sizeof record );
   return bytes;
}

// At an odd address, as in a frame.
template < class T >
T overlaid( Bytes const & bytes ) {
   Bytes frame( 1 );
   frame.insert( frame.end(), bytes.begin(), bytes.end() );
   return *reinterpret_cast< T const * >( frame.data() + 1 );
}

template < class T >
void expectBytes( T const & record, Bytes const & bytes ) {
   EXPECT_EQ( bytesOf( record ), bytes );
   EXPECT_EQ( overlaid< T >( bytes ), record );
   EXPECT_EQ( bytesOf( T() ), Bytes( bytes.size(), 0 ) );
   for ( std::size_t i = 0; i < bytes.size(); ++i ) {
      Bytes other = bytes;
      other[i] ^= 1;
      EXPECT_NE( overlaid< T >( other ), record ) << "byte " << i;
   }
}

MsrpTalkerAdvertiseAttribute const talker( 0x0102030405060708,
                                           { { 0x11, 0x12, 0x13, 0x14, 0x15, 0x16 }, 0x2122 },
                                           { 0x3132, 0x3334 }, { 5, true }, 0x41424344 );
Bytes const talkerBytes{ 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x11,
                         0x12, 0x13, 0x14, 0x15, 0x16, 0x21, 0x22, 0x31, 0x32,
                         0x33, 0x34, 0xB0, 0x41, 0x42, 0x43, 0x44 };

Bytes operator+( Bytes left, Bytes const & right ) {
   left.insert( left.end(), right.begin(), right.end() );
   return left;
}

TEST( Records, ofAttributes ) {
   expectBytes( talker, talkerBytes );
   expectBytes( MsrpTalkerFailedAttribute( talker, { 0x5152535455565758, 0x59 } ),
                talkerBytes + Bytes{ 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59 } );
   expectBytes( MsrpListenerStreamAttribute( 0x0102030405060708 ), { 1, 2, 3, 4, 5, 6, 7, 8 } );
   expectBytes( MsrpDomainAttribute( 6, 3, 0x0FA2 ), { 6, 3, 0x0F, 0xA2 } );
   expectBytes( MvrpVlanAttribute( 0x0123 ), { 0x01, 0x23 } );
   expectBytes( MsrpListenerAttribute( 0x0102030405060708, readyFailed ),
                { 1, 2, 3, 4, 5, 6, 7, 8, 3, 0, 0, 0 } );
}

TEST( Records, ofMessagesAndVectors ) {
   expectBytes( MsrpMessageHeader( 2, 34, 0x0102 ), { 2, 34, 1, 2 } );
   expectBytes( MvrpMessageHeader( 1, 2 ), { 1, 2 } );
   expectBytes( MsrpTalkerVector( 0x2001, talker, 36 ),
                Bytes{ 0x20, 0x01 } + talkerBytes + Bytes{ 36 } );
   expectBytes( MsrpListenerVector( 1, MsrpListenerStreamAttribute( 9 ), 180 ),
                { 0, 1, 0, 0, 0, 0, 0, 0, 0, 9, 180 } );
   expectBytes( MvrpVlanVector( 1, MvrpVlanAttribute( 10 ), 36 ), { 0, 1, 0, 10, 36 } );
}

TEST( Records, changeInPlaceInAFrame ) {
   Bytes frame( 1 + sizeof( MsrpTalkerFailedVector ) );
   auto & vector = *reinterpret_cast< MsrpTalkerFailedVector * >( frame.data() + 1 );
   MsrpTalkerAdvertiseAttribute advertise;
   advertise.streamIdIs( 0x0102030405060708 );
   DataFrameParameters parameters;
   parameters.dmacIs( Pelk::EthAddr( "11:12:13:14:15:16" ) );
   parameters.vlanIdIs( 0x2122 );
   advertise.frameIs( parameters );
   Tspec tSpec;
   tSpec.maxFrameSizeIs( 0x3132 );
   tSpec.maxIntervalFramesIs( 0x3334 );
   advertise.tSpecIs( tSpec );
   advertise.priorityAndRankIs( PriorityAndRank::fromWire( 0xBF ) );
   advertise.accumulatedLatencyIs( 0x41424344 );
   MsrpTalkerFailedAttribute failed;
   failed.talkerAdvertiseAttributeIs( advertise );
   failed.failureInformationIs( { 0x5152535455565758, 0x59 } );
   vector.vectorHeaderIs( 0x2001 );
   vector.firstValueIs( failed );
   vector.vectorIs( 0x61 );

   EXPECT_EQ( frame, ( Bytes{ 0, 0x20, 0x01 } + talkerBytes +
                       Bytes{ 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x61 } ) );
   EXPECT_EQ( vector.firstValue().failureInformation().bridgeId(), 0x5152535455565758u );
   EXPECT_EQ( vector.firstValue().talkerAdvertiseAttribute().frame().vlanId(), 0x2122 );
}

TEST( PriorityAndRank, hasThreeViewsOfOneByte ) {
   auto const seen = overlaid< PriorityAndRank >( { 0x7A } );
   EXPECT_EQ( seen.priority(), 3 );
   EXPECT_TRUE( seen.rank() );
   EXPECT_EQ( seen.undefined(), 0x0A );

   auto const rebuilt = PriorityAndRank::fromWire( 0x7F );
   EXPECT_EQ( rebuilt.value(), 0x70 );
   EXPECT_EQ( rebuilt, PriorityAndRank( 3, true ) );
   EXPECT_EQ( PriorityAndRank( 7, false ).value(), 0xE0 );
}

TEST( PriorityAndRank, comparesAsTheWholeByte ) {
   auto const plain = PriorityAndRank( 3, true );
   auto const withUndefinedBit = overlaid< PriorityAndRank >( { 0x71 } );
   EXPECT_TRUE( plain < withUndefinedBit && plain <= withUndefinedBit &&
                plain != withUndefinedBit );
   EXPECT_TRUE( withUndefinedBit > plain && withUndefinedBit >= plain );
   EXPECT_TRUE( PriorityAndRank( 4, false ) > withUndefinedBit );
}

TEST( ListenerAttribute, holdsAnyNumberAsItsEvent ) {
   MsrpListenerAttribute listener( 1, ready );
   listener.listenerEventIs( static_cast< MsrpListenerEvent >( 0x01020304 ) );
   EXPECT_EQ( listener.listenerEvent(), 0x01020304u );
   EXPECT_EQ( bytesOf( listener )[8], 4 );
   listener.listenerEventIs( askingFailed );
   EXPECT_EQ( listener, MsrpListenerAttribute( 1, askingFailed ) );
}

// The frames of docs/wire-format.md, put together from records.
class WorkedFrame {
 public:
   template < class T >
   WorkedFrame & operator<<( T const & record ) {
      bytes_ = bytes_ + bytesOf( record );
      return *this;
   }
   WorkedFrame & packed( std::initializer_list< U8 > events ) {
      bytes_.insert( bytes_.end(), events );
      return *this;
   }
   Bytes const & bytes() const { return bytes_; }

 private:
   Bytes bytes_;
};

using EndMark = Korv::NetworkOrder< U16 >;

template < class... E >
U8 three( E... event ) {
   U32 byte = 0;
   for ( U32 const e : { static_cast< U32 >( event )... } ) {
      byte = byte * 6 + e;
   }
   return static_cast< U8 >( byte );
}

TEST( WorkedFrames, msrp ) {
   WorkedFrame frame;
   frame << Pelk::EthAddr( "01:80:c2:00:00:0e" ) << Pelk::EthAddr( "02:00:00:00:00:01" )
         << Korv::NetworkOrder< U16 >( 0x22EA ) << U8{ 0 };
   frame << MsrpMessageHeader( talkerAdvertise, 25, 30 ) << Korv::NetworkOrder< U16 >( 2 )
         << MsrpTalkerAdvertiseAttribute( 0x0200000000010000,
                                          { Pelk::EthAddr( "91:e0:f0:00:fe:00" ), 2 }, { 224, 1 },
                                          { 3, true }, 500 );
   frame.packed( { three( newEvent, joinInEvent, 0 ) } ) << EndMark( 0 );
   frame << MsrpMessageHeader( listenerVector, 8, 16 ) << Korv::NetworkOrder< U16 >( 5 )
         << MsrpListenerStreamAttribute( 0x0200000000020000 );
   frame.packed( { three( joinInEvent, joinInEvent, joinInEvent ), three( joinInEvent, lvEvent, 0 ),
                   ready << 6 | askingFailed << 4 | readyFailed << 2 | ready, ready << 6 } )
      << EndMark( 0 );
   frame << MsrpMessageHeader( domainVector, 4, 9 ) << Korv::NetworkOrder< U16 >( leaveAllBit | 1 )
         << MsrpDomainAttribute( 6, 3, 2 );
   frame.packed( { three( joinInEvent, 0, 0 ) } ) << EndMark( 0 ) << EndMark( 0 );

   EXPECT_EQ( frame.bytes(), ( Bytes{ 0x01, 0x80, 0xc2, 0x00, 0x00, 0x0e, 0x02, 0x00, 0x00, 0x00,
                                      0x00, 0x01, 0x22, 0xea, 0x00,       //
                                      0x01, 0x19, 0x00, 0x1e, 0x00, 0x02, //
                                      0x02, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x91, 0xe0,
                                      0xf0, 0x00, 0xfe, 0x00, 0x00, 0x02, 0x00, 0xe0, 0x00, 0x01,
                                      0x70, 0x00, 0x00, 0x01, 0xf4, 0x06, 0x00, 0x00, //
                                      0x03, 0x08, 0x00, 0x10, 0x00, 0x05,             //
                                      0x02, 0x00, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x2b, 0x42,
                                      0x9e, 0x80, 0x00, 0x00, //
                                      0x04, 0x04, 0x00, 0x09, 0x20, 0x01, 0x06, 0x03, 0x00, 0x02,
                                      0x24, 0x00, 0x00, 0x00, 0x00 } ) );
}

TEST( WorkedFrames, mvrp ) {
   WorkedFrame frame;
   frame << Pelk::EthAddr( "01:80:c2:00:00:21" ) << Pelk::EthAddr( "02:00:00:00:00:01" )
         << Korv::NetworkOrder< U16 >( 0x88F5 ) << U8{ 0 };
   frame << MvrpMessageHeader( vlanVector, 2 ) << Korv::NetworkOrder< U16 >( leaveAllBit | 4 )
         << MvrpVlanAttribute( 10 );
   frame.packed( { three( joinInEvent, joinInEvent, joinMtEvent ), three( newEvent, 0, 0 ) } );
   frame << MvrpVlanVector( 1, MvrpVlanAttribute( 100 ), three( lvEvent, 0, 0 ) ) << EndMark( 0 )
         << EndMark( 0 );

   EXPECT_EQ( frame.bytes(), ( Bytes{ 0x01, 0x80, 0xc2, 0x00, 0x00, 0x21, 0x02, 0x00, 0x00,
                                      0x00, 0x00, 0x01, 0x88, 0xf5, 0x00,             //
                                      0x01, 0x02, 0x20, 0x04, 0x00, 0x0a, 0x2d, 0x00, //
                                      0x00, 0x01, 0x00, 0x64, 0xb4, 0x00, 0x00, 0x00, 0x00 } ) );
}

} // namespace
} // namespace Mrp
