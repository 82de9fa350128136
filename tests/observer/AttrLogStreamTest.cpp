// What an adapter says on its stream, message by message.
#include "mrp/observability/AttrLogAdapters.h"
#include "mrp/platform/korv/RangeException.h"

#include "tests/support/MirrorLine.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using namespace Korv::NboAttrLog;
using testing::ElementsAre;
using testing::IsEmpty;

// What has been written and not taken, as "ENTITY ATTRIBUTE: PAYLOAD" without the tokens, or
// "ENTITY ATTRIBUTE marker N". Takes it; flows go on afterwards.
std::vector< std::string > step( Output & output ) {
   std::vector< std::string > all;
   Bytes const bytes( output.front().begin(), output.front().end() );
   output.frontDel( bytes.size() );
   NameGuard names;
   for ( std::size_t at = !bytes.empty() && bytes[0] == 'M' ? greetingBytes : 0;
         at < bytes.size(); ) {
      ByteReader in( std::span< U8 const >( bytes ).subspan( at ), names );
      auto const size = in.get< U32 >();
      std::string text = std::to_string( in.get< U64 >() );
      text += ' ' + std::to_string( in.get< Korv::S16 >() );
      bool const marker = in.get< U8 >() == transaction;
      auto const payload = in.take( size - headerBytes );
      if ( marker ) {
         text += " marker " + std::to_string( payload[0] );
      } else {
         EXPECT_EQ( payload.front(), 1 );
         EXPECT_EQ( payload.back(), 3 );
         text += ": " + hex( Bytes( payload.begin() + 1, payload.end() - 1 ) );
      }
      all.push_back( text );
      at += lengthBytes + size;
   }
   output.doFlowOut();
   return all;
}
std::vector< std::string > said( Output & output ) {
   std::vector< std::string > all;
   while ( !output.idle() ) {
      auto const more = step( output );
      all.insert( all.end(), more.begin(), more.end() );
   }
   return all;
}

// One root on a stream of its own.
template < class E >
struct Sender {
   explicit Sender( Korv::Ptr< E > const & of, std::size_t bound = Output::usualBound )
      : entity( of ), output( bound ), adapter( *of ) {
      adapter.doRemountSelf( &output );
   }
   std::vector< std::string > said() { return TestSupport::said( output ); }

   Korv::Ptr< E > entity;
   Output output;
   typename E::KorvNboAttrLogSa adapter;
};

Korv::Ptr< Mrp::MrpIntfTypeApplicant > vlansOf( std::initializer_list< U64 > keys ) {
   Korv::Ptr< Mrp::MrpIntfTypeApplicant > const type( new Mrp::MrpIntfTypeApplicant( 1 ) );
   for ( U64 const key : keys ) {
      type->mrpAttributeIs( key );
   }
   return type;
}

TEST( AttrLog, tellsAllOfAnEntityFirst ) {
   Korv::Ptr< Mrp::MrpConfig > const config( new Mrp::MrpConfig( "c" ) );
   config->intfLeaveTimeIs( Pelk::IntfId( "e1" ), 1 );
   Sender sender( config );
   Bytes const begin( sender.output.front().begin(), sender.output.front().begin() + 12 );
   EXPECT_EQ( std::string( begin.begin(), begin.begin() + 8 ), "MrpAttrL" );
   EXPECT_EQ( hex( Bytes( begin.begin() + 8, begin.end() ) ), "00 01 00 00" );
   EXPECT_THAT(
      sender.said(),
      ElementsAre( "1 136: 01 00 00 00 10 00 0e 4d 72 70 3a 3a 4d 72 70 43 6f 6e 66 69 67 "
                   "03 00 00 00 03 00 01 63 04 00 00 00 08 00 00 00 00 00 00 00 01",
                   "1 258: 01", "1 259: 3f e3 33 33 33 33 33 33", "1 260: 40 24 00 00 00 00 00 00",
                   "1 261 marker 0", "1 261: 00 02 65 31 3f f0 00 00 00 00 00 00", "1 261 marker 2",
                   "1 262 marker 0", "1 262 marker 2", "1 263: 3f e3 33 33 33 33 33 33",
                   "1 264: 00" ) );
}

TEST( AttrLog, tellsOfAChildByItsOrphanItsPlaceAndItsAttributes ) {
   Sender sender( vlansOf( {} ) );
   sender.said();
   auto * const vlan = sender.entity->mrpAttributeIs( 10 );
   EXPECT_THAT(
      sender.said(),
      ElementsAre( "2 136: 01 00 00 00 16 00 14 4d 72 70 3a 3a 4d 72 70 41 74 74 72 44 61 "
                   "74 61 62 61 73 65 03 00 00 00 08 00 00 00 00 00 00 00 0a "
                   "04 00 00 00 08 00 00 00 00 00 00 00 02",
                   "1 259: 00 00 00 00 00 00 00 0a 00 00 00 00 00 00 00 02", "2 259: 00 00 00 00",
                   "2 260: 00 00 00 00", "2 261: 00 00", "2 262 marker 0", "2 262 marker 2" ) );
   // Direct: each change at once, and none for what changes nothing.
   vlan->applicantStateIs( Mrp::mrpQuietActive );
   vlan->applicantStateIs( Mrp::mrpQuietActive );
   vlan->attributeValueEnq( 7 );
   vlan->attributeValueMetadataIs( { 0, 2 } );
   vlan->attributeValueDeq();
   EXPECT_THAT( sender.said(),
                ElementsAre( "2 259: 00 00 00 05", "2 262: 00 07", "2 261: 00 02", "2 -262: 00" ) );
   sender.entity->mrpAttributeDel( 10 );
   EXPECT_THAT( sender.said(), ElementsAre( "1 -259: 00 00 00 00 00 00 00 0a" ) );
}

TEST( AttrLog, mergesWhatChangesWhileThereIsNoRoom ) {
   Sender sender( vlansOf( { 10, 11 } ), 1 );
   sender.said();
   auto * const vlan = sender.entity->mrpAttribute( 10 );
   sender.output.doSendMarker( 99, 1, Marker::begin ); // until it is taken there is no room
   for ( U32 state = 1; state <= 10; ++state ) {
      vlan->applicantStateIs( static_cast< Mrp::MrpApplicantState >( state ) );
   }
   sender.entity->mrpAttributeDel( 11 );
   for ( U64 const key : { U64{ 11 }, U64{ 12 } } ) { // of which 11 alone is known
      sender.entity->mrpAttributeIs( key );
      sender.entity->mrpAttributeDel( key );
   }
   EXPECT_THAT( sender.said(), ElementsAre( "99 1 marker 0", "2 259: 00 00 00 0a",
                                            "1 -259: 00 00 00 00 00 00 00 0b" ) );
   // All is as before: no flow is left.
   vlan->applicantStateIs( Mrp::mrpVeryAnxiousObserver );
   EXPECT_THAT( sender.said(), ElementsAre( "2 259: 00 00 00 00" ) );
}

// A bound that one message fills: the walk over the bytes stops at each of them.
TEST( AttrLog, beginsAValueAnewWhenItsSpanHasChanged ) {
   auto const vlan = Mrp::MrpAttrDatabaseIs( 10 );
   for ( U8 byte = 1; byte <= 4; ++byte ) {
      vlan->attributeValueEnq( byte );
   }
   Sender sender( vlan, 1 );
   while ( step( sender.output ).back() != "1 262: 01 02" ) {
   }
   vlan->attributeValueDeq(); // slot 3 is next
   EXPECT_THAT( sender.said(),
                ElementsAre( "1 262: 02 03", "1 261: 01 03", "1 262: 01 02", "1 262: 02 03",
                             "1 262: 03 04", "1 262 marker 2", "1 -262: 00" ) );
}

// Counters change with each attribute of a frame: they are told when the frame is over.
TEST( AttrLog, tellsOfCountersOnceATurn ) {
   Sender sender( Korv::Ptr< Mrp::MrpCounters >( new Mrp::MrpCounters( "c" ) ), 20 );
   sender.said();
   Mrp::MrpCounters & counters = *sender.entity;
   std::string const seven = ": 00 00 00 00 00 00 00 07";
   for ( int i = 0; i < 7; ++i ) {
      counters.numOfJoinIndicationsInc( 1 );
   }
   counters.numOfMalformedPktsIs( 7 );
   counters.numOfIncorrectDmacIs( 7 );
   counters.numOfIncorrectDmacIs( 0 ); // as it was told
   EXPECT_EQ( sender.output.bytes(), 0u );
   // What has changed behind the point that the flow has reached is not lost.
   EXPECT_THAT( step( sender.output ), IsEmpty() );
   counters.numOfIncorrectPduVersionIs( 7 );
   EXPECT_THAT( sender.said(), ElementsAre( "1 260" + seven, "1 266" + seven, "1 258" + seven ) );
   // Nor is what was pending when the entity has gone.
   counters.numOfLeaveIndicationsInc( 7 );
   sender.entity = nullptr;
   EXPECT_THAT( sender.said(), ElementsAre( "1 267" + seven ) );
}

TEST( AttrLog, takesWhatIsPendingToAnotherStream ) {
   Sender sender( Korv::Ptr< Mrp::MrpCounters >( new Mrp::MrpCounters( "c" ) ) );
   sender.said();
   sender.entity->numOfLeaveIndicationsInc( 7 );
   sender.entity = nullptr; // and is kept until that has been told
   Output other;
   sender.adapter.doRemountSelf( &other );
   EXPECT_THAT( said( other ), testing::Contains( "1 267: 00 00 00 00 00 00 00 07" ) );
   sender.adapter.doRemountSelf( nullptr );
}

TEST( AttrLog, refusesAChangeOfWhatIsReadOnly ) {
   Sender sender( vlansOf( { 10 } ) );
   sender.said();
   sender.output.readOnlyIs( true );
   EXPECT_THROW( sender.entity->mrpAttributeDel( 10 ), Korv::RangeException );
}

// An entity that is received on one stream and sent on the same: only what is not being received
// goes out.
TEST( AttrLog, doesNotSendBackWhatItReceives ) {
   Sender sender( vlansOf( { 10 } ) );
   sender.said();
   Mrp::MrpAttrDatabase & vlan = *sender.entity->mrpAttribute( 10 );
   Output output;
   Mrp::MrpAttrDatabase::KorvNboAttrLogSa adapter( vlan );
   adapter.doRemountSelf( &output );
   said( output );
   NameGuard names;
   Bytes const state{ 0, 0, 0, 5 };
   ByteReader in( state, names );
   adapter.handleAttrDeserialization( 259, in );
   EXPECT_EQ( vlan.applicantState(), Mrp::mrpQuietActive );
   EXPECT_THAT( said( output ), IsEmpty() );
   EXPECT_THAT( sender.said(), ElementsAre( "2 259: 00 00 00 05" ) ); // but another stream hears it
   vlan.applicantStateIs( Mrp::mrpAnxiousActive );
   EXPECT_THAT( said( output ), ElementsAre( "1 259: 00 00 00 04" ) );
}

} // namespace
} // namespace TestSupport
