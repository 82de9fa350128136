// From one VectorAttribute, the cursor on its VectorHeader, to one MrpParsedAttribute per value.
//
// The FirstValue goes into the Rx field of its kind; each event steps that field on by one value,
// derives the key and saves event and value under it. No machine runs here: ParsedAttributes.cpp
// applies the frame as a whole.
#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/Logs.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Format.h"
#include "mrp/vocabulary/VectorFormat.h"

#include <array>
#include <cstring>

namespace Mrp {

namespace {

// Reads the record at the cursor and consumes it, whether or not the frame holds that much.
template < class FirstValue >
FirstValue takeFirstValue( Pelk::Pkt & pkt ) {
   FirstValue value;
   std::memcpy( &value, pkt.frontData(), sizeof value );
   pkt.delSharedHeadData( sizeof value );
   return value;
}

template < class Kind >
void loadFirstValue( MrpLib & lib, Pelk::Pkt & pkt ) {
   ( lib.*Kind::rxIs )( Kind::received( takeFirstValue< typename Kind::FirstValue >( pkt ) ) );
}

template < class Kind >
void stepRx( MrpLib & lib ) {
   if constexpr ( !std::is_same_v< Kind, NoKind > ) {
      ( lib.*Kind::rxIs )( Kind::next( ( lib.*Kind::rx )() ) );
   }
}

template < class Kind >
U64 rxKey( MrpLib const & lib ) {
   if constexpr ( std::is_same_v< Kind, NoKind > ) {
      return 0;
   } else {
      return Kind::key( ( lib.*Kind::rx )() );
   }
}

template < class Kind >
void saveRx( MrpLib const & lib, MrpParsedAttribute & attribute ) {
   if constexpr ( !std::is_same_v< Kind, NoKind > ) {
      attribute.attributeValueAllIs( ( lib.*Kind::rx )() );
   }
}

} // namespace

MrpParseStatus MrpSm::parseVectorAttribute( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseContext & context = *parseContext_;
   U16 const header = Korv::networkU16At( pkt->frontData() );
   U16 const values = header & numberOfValuesMask;
   if ( ( header & leaveAllBit ) != 0 ) {
      trace( 8, " leaveAllEvent is True" );
      Sornlog::log( Ring::leaveAllEventIsTrue, context.intfId() );
      context.leaveAllIs( leaveAll );
      if ( !recycledPkt_ ) {
         mrpRxLeaveAllIs( context.attributeType(), true );
      }
   } else if ( values == 0 ) {
      context.attributeListBytesLeftIs( 0 );
      mrpCounters_->numOfMalformedPktsInc( 1 );
      return parseMalformedPkt;
   } else {
      context.leaveAllIs( nullLeaveAll );
   }
   context.numberOfValuesIs( values );
   pkt->delSharedHeadData( vectorHeaderBytes );

   switch ( mrpLib_->application() ) {
   case MSRP: return parseMsrpVector( pkt );
   case MVRP: return parseMvrpVector( pkt );
   default:
      trace( 4, "Application ", mrpLib_->application(), " not supported" );
      Sornlog::log( Ring::applicationNotSupported, static_cast< U32 >( mrpLib_->application() ) );
      mrpCounters_->numOfUnknownApplicationInc( 1 );
      return parseOk;
   }
}

namespace {

// A type that the application lacks has the size 0, so that parseMessage lets it pass if its
// AttributeLength is 0, and only then. The vector's body is not consumed: the list goes on with it
// as if it were the next vector.
MrpParseStatus unidentifiedType( MrpSm & mrpSm ) {
   U8 const type = mrpSm.parseContext()->attributeType();
   trace( 4, " ######## Unidentified attribute type = ", type );
   Sornlog::log( Ring::unidentifiedAttributeType, type );
   mrpSm.mrpCounters()->numOfUnknownAttributeTypeInc( 1 );
   if ( MRP_ERROR.okToLog() ) {
      MRP_ERROR.log( Korv::format( "Unidentified attribute type %d received on %s", type,
                                   mrpSm.parseContext()->intfId().stringValue().c_str() ) );
   }
   return parseOk;
}

} // namespace

MrpParseStatus MrpSm::parseMsrpVector( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseStatus status = parseOk;
   bool const known = withAttributeKind( MSRP, parseContext_->attributeType(), [&]( auto kind ) {
      using Kind = decltype( kind );
      loadFirstValue< Kind >( *mrpLib_, *pkt );
      status = Kind::fourPacked ? parseThreeFourPackedEvents( pkt ) : parseThreePackedEvents( pkt );
   } );
   return known ? status : unidentifiedType( *this );
}

MrpParseStatus MrpSm::parseMvrpVector( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   if ( parseContext_->attributeType() != vlanVector ) {
      return unidentifiedType( *this );
   }
   auto const first = takeFirstValue< MvrpVlanAttribute >( *pkt );
   trace( 8, "VlanVector vlanId = ", first.vlanId() );
   mrpLib_->mvrpVlanVectorRxIs( first );
   return parseThreePackedEvents( pkt );
}

namespace {

// A vector of no values carries a LeaveAll alone and makes no parsed attribute. In the context it
// counts as one event, lvAllEvent, which inEvent then replaces: watchers of the context see both.
void noteLeaveAllOnlyVector( MrpParseContext & context ) {
   context.attributeKeyIs( 0 );
   if ( context.leaveAll() == leaveAll ) {
      context.attributeEventIs( lvAllEvent );
      context.eventsCounterInc( 1 );
      context.attributeEventIs( inEvent );
   }
}

// The one bound of NumberOfValues: its events must fit in what is left of the frame.
MrpParseStatus eventsDoNotFit( MrpSm & mrpSm, U32 eventBytes, std::size_t bytesLeft ) {
   mrpSm.parseContext()->attributeListBytesLeftIs( 0 );
   mrpSm.mrpCounters()->numOfMalformedPktsInc( 1 );
   if ( MRP_ERROR.okToLog() ) {
      MRP_ERROR.log(
         Korv::format( "Number of values %d does not match with the packet bytes %d received on %s",
                       static_cast< int >( eventBytes ), static_cast< int >( bytesLeft ),
                       mrpSm.parseContext()->intfId().stringValue().c_str() ) );
   }
   return parseMalformedPkt;
}

// The events in each ThreePackedEvents byte; above 215 the first of them is none of the six.
constexpr auto eventsOfByte = [] {
   std::array< std::array< U8, eventsPerThreePackedByte >, 256 > events{};
   for ( U32 byte = 0; byte < events.size(); ++byte ) {
      events[byte] = { static_cast< U8 >( byte / 36 ), static_cast< U8 >( byte / 6 % 6 ),
                       static_cast< U8 >( byte % 6 ) };
   }
   return events;
}();

// Walks the ThreePackedEvents at the cursor, which stays where it is: onEvent( event, eventNum )
// for each of the n values. What is left over in the last byte is not read.
template < class OnEvent >
void walkThreePacked( U8 const * bytes, U16 n, OnEvent onEvent ) {
   U16 eventNum = 0;
   while ( n - eventNum >= 3 ) {
      auto const & events = eventsOfByte[*bytes++];
      onEvent( events[0], eventNum++ );
      onEvent( events[1], eventNum++ );
      onEvent( events[2], eventNum++ );
   }
   for ( U32 i = 0; eventNum < n; ++i ) {
      onEvent( eventsOfByte[*bytes][i], eventNum++ );
   }
}

} // namespace

// Flattened: what a value costs here is a good part of what a refresh costs.
[[gnu::flatten]] MrpParseStatus
MrpSm::parseThreePackedEvents( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseContext & context = *parseContext_;
   U16 const n = context.numberOfValues();
   U32 const packed = packedBytes( n, eventsPerThreePackedByte );
   if ( n == 0 ) {
      noteLeaveAllOnlyVector( context );
   }
   if ( packed > pkt->bytes() ) {
      return eventsDoNotFit( *this, packed, pkt->bytes() );
   }
   withAttributeKindOrNone( mrpLib_->application(), context.attributeType(), [&]( auto kind ) {
      walkThreePacked( pkt->frontData(), n, [this]( U8 event, U16 eventNum ) {
         processValue< decltype( kind ) >( event, eventNum );
      } );
   } );
   context.attributeListBytesLeftDec( packed + context.attributeLength() + vectorHeaderBytes );
   pkt->delSharedHeadData( packed );
   return parseOk;
}

MrpParseStatus MrpSm::parseThreeFourPackedEvents( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseContext & context = *parseContext_;
   U16 const n = context.numberOfValues();
   U32 const three = packedBytes( n, eventsPerThreePackedByte );
   U32 const total = three + packedBytes( n, eventsPerFourPackedByte );
   if ( n == 0 ) {
      noteLeaveAllOnlyVector( context );
      context.attributeListBytesLeftDec( context.attributeLength() + vectorHeaderBytes );
      return parseOk;
   }
   if ( total > pkt->bytes() ) {
      return eventsDoNotFit( *this, total, pkt->bytes() );
   }
   walkThreePacked( pkt->frontData(), n, [&]( U8 event, U16 eventNum ) {
      processThreeAndFourPacked( pkt, event, eventNum, static_cast< U16 >( three ) );
   } );
   context.attributeListBytesLeftDec( total + context.attributeLength() + vectorHeaderBytes );
   pkt->delSharedHeadData( total );
   return parseOk;
}

void MrpSm::processThreeAndFourPacked( Korv::Ptr< Pelk::Pkt > const & pkt, U8 event, U16 eventNum,
                                       U16 fourPackedPtr ) {
   U8 const byte = pkt->frontData()[fourPackedPtr + eventNum / eventsPerFourPackedByte];
   U32 const field = ( byte >> ( 6 - 2 * ( eventNum % eventsPerFourPackedByte ) ) ) & 3u;
   mrpLib_->msrpListenerVectorRxIs( MsrpListenerAttribute(
      mrpLib_->msrpListenerVectorRx().streamId(), static_cast< MsrpListenerEvent >( field ) ) );
   processValue< ListenerKind >( event, eventNum );
}

// The one place where a value is produced. It is a step on from the one before it, so that value i
// is the FirstValue plus i only as long as the events are walked in order, each once.
template < class Kind >
void MrpSm::processValue( U8 event, U16 eventNum ) {
   if ( eventNum != 0 ) {
      stepRx< Kind >( *mrpLib_ );
   }
   MrpParseContext & context = *parseContext_;
   context.attributeKeyIs( rxKey< Kind >( *mrpLib_ ) );
   context.attributeEventIs( event );
   context.eventsCounterInc( 1 );
   if ( !recycledPkt_ && !mrpConfig_->mrpFlooding() ) {
      saveValue< Kind >();
   } else {
      trace( 8, "Recycled Pkt. Returning after parsing" );
   }
}

// A key that comes a second time in a frame is queued again, over the one record.
template < class Kind >
void MrpSm::saveValue() {
   MrpParsedAttributeKey const key( parseContext_->attributeType(), parseContext_->attributeKey() );
   MrpParsedAttribute & attribute = *mrpParsedAttributeIs( key );
   attribute.attributeEventIs( parseContext_->attributeEvent() );
   saveRx< Kind >( *mrpLib_, attribute );
   if constexpr ( std::is_same_v< Kind, DomainKind > ) {
      msrpParsedDomainKeyEnq( key );
   } else {
      mrpParsedAttributeKeyEnq( key );
   }
}

// The public forms find the kind afresh. A type that the application lacks has the key 0 and no
// value.
void MrpSm::processMrpEvent( U8 event, U16 eventNum ) {
   withAttributeKindOrNone(
      mrpLib_->application(), parseContext_->attributeType(),
      [&]( auto kind ) { processValue< decltype( kind ) >( event, eventNum ); } );
}

void MrpSm::saveParsedMrpAttribute() {
   withAttributeKindOrNone( mrpLib_->application(), parseContext_->attributeType(),
                            [this]( auto kind ) { saveValue< decltype( kind ) >(); } );
}

U64 MrpSm::mrpGetRxAttributeKey() const {
   switch ( mrpLib_->application() ) {
   case MSRP: return msrpGetRxAttributeKey();
   case MVRP: return mvrpGetRxAttributeKey();
   default: return 0;
   }
}

U64 MrpSm::msrpGetRxAttributeKey() const {
   U64 key = 0;
   withAttributeKind( MSRP, parseContext_->attributeType(),
                      [&]( auto kind ) { key = rxKey< decltype( kind ) >( *mrpLib_ ); } );
   return key;
}

U64 MrpSm::mvrpGetRxAttributeKey() const {
   return parseContext_->attributeType() == vlanVector ? rxKey< VlanKind >( *mrpLib_ ) : 0;
}

void MrpSm::saveParsedMrpAttributeValue( MrpParsedAttribute & attribute ) const {
   switch ( mrpLib_->application() ) {
   case MSRP: saveParsedMsrpAttributeValue( attribute ); break;
   case MVRP: saveParsedMvrpAttributeValue( attribute ); break;
   default: break;
   }
}
void MrpSm::saveParsedMsrpAttributeValue( MrpParsedAttribute & attribute ) const {
   withAttributeKind( MSRP, parseContext_->attributeType(),
                      [&]( auto kind ) { saveRx< decltype( kind ) >( *mrpLib_, attribute ); } );
}
void MrpSm::saveParsedMvrpAttributeValue( MrpParsedAttribute & attribute ) const {
   withAttributeKind( MVRP, parseContext_->attributeType(),
                      [&]( auto kind ) { saveRx< decltype( kind ) >( *mrpLib_, attribute ); } );
}

void MrpLib::mrpValueFromFirstValue( U16 eventNum ) {
   if ( eventNum == 0 ) {
      return;
   }
   switch ( application_ ) {
   case MSRP: mrpMsrpValueFromFirstValue(); break;
   case MVRP: mrpMvrpValueFromFirstValue(); break;
   default: break;
   }
}
void MrpLib::mrpMsrpValueFromFirstValue() {
   withAttributeKind( MSRP, mrpSm_->parseContext()->attributeType(),
                      [this]( auto kind ) { stepRx< decltype( kind ) >( *this ); } );
}
void MrpLib::mrpMvrpValueFromFirstValue() {
   if ( mrpSm_->parseContext()->attributeType() == vlanVector ) {
      mrpIncrementVlanVector();
   }
}
void MrpLib::mrpIncrementTalkerAdvertise() { stepRx< TalkerAdvertiseKind >( *this ); }
void MrpLib::mrpIncrementTalkerFailed() { stepRx< TalkerFailedKind >( *this ); }
void MrpLib::mrpIncrementListenerVector() { stepRx< ListenerKind >( *this ); }
void MrpLib::mrpIncrementDomainVector() { stepRx< DomainKind >( *this ); }
void MrpLib::mrpIncrementVlanVector() { stepRx< VlanKind >( *this ); }

} // namespace Mrp
