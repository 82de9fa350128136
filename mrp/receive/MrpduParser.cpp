// The walk over an MRPDU: messages, and the attribute list of each. What a vector holds is
// VectorDecoder.cpp.
//
// The reads at the packet's front are not bounded by the frame. A cursor that has run past the
// data leaves the packet's length wrapped around, so that tests against it pass; what ends such a
// walk is the run of zeros behind the data (platform/pelk/ReceivePool.h), which reads as a header
// with no values, as an EndMark or as an AttributeListLength of 0.
//
// Each level counts its own failure: a bad vector has been counted by the decoder, and its list
// counts it again. One case counts once, an MVRP list where two zero bytes follow the bad vector:
// they pass for the list's EndMark.
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/receive/FutureProtocolVersion.h"
#include "mrp/vocabulary/VectorFormat.h"

namespace Mrp {

bool futureProtocolVersion = false;

namespace {

U16 nextU16( Pelk::Pkt const & pkt ) { return Korv::networkU16At( pkt.frontData() ); }

} // namespace

void MrpSm::parseMrpdu( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   U8 const version = *pkt->frontData();
   if ( version != protocolVersion() ) {
      trace( 4, "MRPDU protocol version", version,
             " is greater than the current supported version ", protocolVersion() );
      Sornlog::log( Ring::futureVersion, version, protocolVersion() );
      futureProtocolVersion = true;
      mrpCounters_->numOfIncorrectPduVersionInc( 1 );
   }
   pkt->delSharedHeadData( 1 );
   MrpParseStatus status = parseOk;
   while ( status == parseOk && pkt->frontBytes() != 0 ) {
      status = parseMessage( pkt );
   }
   recycledPktIs( false );
   trace( 8, "End of Mark/End of Packet reached, coming out \n" );
   trace( 8, "parse status = ", status );
}

MrpParseStatus MrpSm::parseMessage( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseContext & context = *parseContext_;
   context.attributeTypeIs( pkt->frontData()[0] );
   context.attributeLengthIs( pkt->frontData()[1] );
   pkt->delSharedHeadData( 2 );
   if ( mrpLib_->application() == MSRP ) {
      context.attributeListBytesLeftIs( nextU16( *pkt ) );
      trace( 8, "AttributeListLength = ", context.attributeListBytesLeft() );
      pkt->delSharedHeadData( 2 );
      if ( context.attributeListBytesLeft() == 0 ) {
         mrpCounters_->numOfMalformedPktsInc( 1 );
         return parseMalformedPkt;
      }
   }

   U8 const size = mrpSizeOfAttribute( context.attributeType(), mrpLib_->application() );
   if ( size == context.attributeLength() ) {
      MrpParseStatus const status = parseAttributeList( pkt );
      if ( status != parseOk ) {
         return status;
      }
   } else {
      trace( 4, " ######## Invalid attribute length = ", context.attributeLength(),
             " or Invalid attribute type = ", context.attributeType() );
      if ( !futureProtocolVersion ) {
         mrpCounters_->numOfMalformedPktsInc( 1 );
         return parseMalformedPkt;
      }
      skipMessageDueToFutureProtocolVersion( pkt );
   }
   return nextU16( *pkt ) == endOfMark ? parseEndOfMarkerReached : parseOk;
}

MrpParseStatus MrpSm::parseAttributeList( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   MrpParseStatus status = parseOk;
   for ( ;; ) {
      status = parseVectorAttribute( pkt );
      // An EndMark ends the list whatever the status is, also behind a bad vector.
      if ( nextU16( *pkt ) == endOfMark ) {
         break;
      }
      if ( status != parseOk || pkt->bytes() <= endMarkBytes ) {
         mrpCounters_->numOfMalformedPktsInc( 1 );
         return parseMalformedPkt;
      }
   }
   // All that is checked of the AttributeListLength: just the EndMark's two bytes are left of it.
   if ( mrpLib_->application() == MSRP &&
        parseContext_->attributeListBytesLeft() != endMarkBytes ) {
      mrpCounters_->numOfMalformedPktsInc( 1 );
      return parseMalformedPkt;
   }
   pkt->delSharedHeadData( endMarkBytes );
   return status;
}

// The cursor stands behind the header of a message of a higher version that is unknown here.
void MrpSm::skipMessageDueToFutureProtocolVersion( Korv::Ptr< Pelk::Pkt > const & pkt ) {
   if ( mrpLib_->application() == MSRP ) {
      pkt->delSharedHeadData( parseContext_->attributeListBytesLeft() );
      return;
   }
   if ( mrpLib_->application() != MVRP ) {
      return;
   }
   // Without a list length the vectors are stepped over one by one. The step is cut to 8 bits, so
   // that one longer than 255 bytes is skipped wrongly, and one of just 256 not at all: standing
   // before that one the loop would never end.
   do {
      U16 const values = mrpGetNumOfValues( pkt->frontData() );
      U8 const step =
         static_cast< U8 >( vectorHeaderBytes + packedBytes( values, eventsPerThreePackedByte ) +
                            parseContext_->attributeLength() );
      if ( step == 0 && nextU16( *pkt ) != endOfMark ) {
         return;
      }
      pkt->delSharedHeadData( step );
   } while ( nextU16( *pkt ) != endOfMark );
   pkt->delSharedHeadData( endMarkBytes );
}

} // namespace Mrp
