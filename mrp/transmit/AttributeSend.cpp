// The machines' door to the transmit path: one attribute into the frame of one interface, at once.
//
// Owns the life of a frame up to the encoders: the interface must be able to transmit; the first
// attribute makes the frame; an attribute of a lower type sends it and starts another, so that a
// frame's messages stand in non-decreasing type; a full frame leaves.
#include "mrp/frame/MrpLib.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/transmit/OpenFrame.h"
#include "mrp/transmit/VectorEncoding.h"

namespace Mrp {

namespace {

// Room left for the next attribute (at most 43 bytes) and the closing of the frame (4).
constexpr U32 fullMargin = 64;

// Looked at after the encoding. An interface without a status entry has only the general bound.
bool isFull( MrpSm const & sm, MrpTxPacketContext const & packetContext, Pelk::IntfId intfId ) {
   U8 const application = static_cast< U8 >( sm.mrpLib()->application() );
   U16 const total =
      static_cast< U16 >( mrpGetNumOfPackedBytes( packetContext, application ) + fullMargin );
   auto const * const status =
      sm.allIntfStatusDir() ? sm.allIntfStatusDir()->intfStatus( intfId ) : nullptr;
   return ( status && total >= status->mtu() ) || total >= mrpMaxTxDataSz;
}

} // namespace

void MrpLib::mrpSendAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                   bool secondPktContext ) {
   if ( !mrpSm_->mrpPamSm()->pamCollection()->intfPam( intfId ) ) {
      trace( 4, " Tx is being Attempted before the PAM is enabled " );
      return;
   }
   MrpTxPacketContext * packetContext = openFrame( *this, intfId, secondPktContext );
   if ( packetContext && !packetContext->pkt() ) {
      // Its frame is just leaving, and whoever is told of that sends this: it goes into another.
      openFrameDel( *this, intfId, secondPktContext );
      packetContext = nullptr;
   }
   if ( packetContext && attribute.attributeType() < packetContext->currentAttrType() ) {
      mrpSm_->mrpTransmitTxPacket( intfId, secondPktContext );
      // None, unless somebody who was told of that frame has begun another.
      packetContext = openFrame( *this, intfId, secondPktContext );
   }
   if ( !packetContext ) {
      Korv::Ptr< Pelk::Pkt > const pkt = Pelk::globalPktManager().newPkt();
      if ( !pkt ) {
         trace( 4, "Packet allocation failed for ", attribute );
         Sornlog::log( Ring::packetAllocationFailed, intfId, attribute.attributeType(),
                       attribute.attributeEvent(), attribute.newEvent() );
         return;
      }
      packetContext = openFrameIs( *this, intfId, secondPktContext, pkt );
      packetContext->curMessageIs( nullptr );
      packetContext->curVectorIs( nullptr );
      packetContext->currentAttrTypeIs( 0 );
      pkt->newSharedHeadData( mrpMaxTxDataSz );
   }

   switch ( application_ ) {
   case MSRP: mrpSendMsrpAttributeIntf( attribute, intfId, secondPktContext ); break;
   case MVRP: mrpSendMvrpAttributeIntf( attribute, intfId, secondPktContext ); break;
   default:
      trace( 8, " Not supported Application:  ", application_ );
      Sornlog::log( Ring::applicationNotSent, static_cast< U32 >( application_ ) );
      break;
   }
   if ( isFull( *mrpSm_, *packetContext, intfId ) ) {
      mrpSm_->mrpTransmitTxPacket( intfId, secondPktContext );
   }
}

void MrpLib::mrpSendMsrpAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                       bool secondPktContext ) {
   U8 const event = attribute.attributeEvent();
   switch ( attribute.attributeType() ) {
   case talkerAdvertise: mrpSendTalkerAdvertise( event, intfId, secondPktContext ); break;
   case talkerFailed: mrpSendTalkerFailed( event, intfId, secondPktContext ); break;
   case listenerVector: mrpSendListenerVector( event, intfId, secondPktContext ); break;
   case domainVector: mrpSendDomainVector( event, intfId, secondPktContext ); break;
   default: trace( 8, " Invalid Attribute type in mrpSendAttributeIntf for ", intfId ); break;
   }
}

void MrpLib::mrpSendMvrpAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                       bool secondPktContext ) {
   if ( attribute.attributeType() == vlanVector ) {
      mrpSendVlanVector( attribute.attributeEvent(), intfId, secondPktContext );
   } else {
      trace( 8, " Invalid Attribute type in mrpSendMvrpAttributeIntf for ", intfId );
   }
}

void MrpLib::mrpSendLeaveAll( U8 attributeType, Pelk::IntfId intfId ) {
   trace( 7, "mrpSendLeaveAll: type = ", attributeType, " intfId = ", intfId );
   mrpSendAttributeIntf( MrpParameters( intfId, attributeType, lvAllEvent ), intfId, false );
}

} // namespace Mrp
