// The machines' door to the transmit path: one attribute into the frame of one interface, at once.
//
// Owns the life of a frame up to the encoders: the interface must be able to transmit; the first
// attribute makes the frame; an attribute of a lower type sends it and starts another, so that a
// frame's messages stand in non-decreasing type (unless who is told of a frame sends into it at
// once); a full frame leaves.
#include "mrp/frame/MrpLib.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/transmit/OpenFrame.h"
#include "mrp/transmit/OthersTold.h"
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

bool canTransmit( MrpSm const & sm, Pelk::IntfId intfId ) {
   if ( sm.mrpPamSm()->pamCollection()->intfPam( intfId ) ) {
      return true;
   }
   trace( 4, " Tx is being Attempted before the PAM is enabled " );
   return false;
}

// The one that somebody has begun meanwhile, if there is one. Null if there is no packet, or if who
// is told of the frame sends or closes it at once; then the attribute is not said.
MrpTxPacketContext * newFrame( MrpLib & lib, MrpParameters const & attribute, Pelk::IntfId intfId,
                               bool secondPktContext ) {
   if ( MrpTxPacketContext * const begun = openFrame( lib, intfId, secondPktContext ) ) {
      return begun;
   }
   Korv::Ptr< Pelk::Pkt > const pkt = Pelk::globalPktManager().newPkt();
   if ( !pkt ) {
      trace( 4, "Packet allocation failed for ", attribute );
      Sornlog::log( Ring::packetAllocationFailed, intfId, attribute.attributeType(),
                    attribute.attributeEvent(), attribute.newEvent() );
      return nullptr;
   }
   // Before it is announced: who is told of it may send into it.
   pkt->newSharedHeadData( mrpMaxTxDataSz );
   MrpTxPacketContext * frame = nullptr;
   whileOthersAreTold( lib, attribute.attributeType(),
                       [&] { frame = openFrameIs( lib, intfId, secondPktContext, pkt ); } );
   return frame;
}

// The open frame that the attribute goes into; null if there can be none.
MrpTxPacketContext * frameFor( MrpLib & lib, MrpParameters const & attribute, Pelk::IntfId intfId,
                               bool secondPktContext ) {
   MrpSm & sm = *lib.mrpSm();
   if ( !canTransmit( sm, intfId ) ) {
      return nullptr;
   }
   if ( MrpTxPacketContext * const frame = openFrame( lib, intfId, secondPktContext ) ) {
      bool const isLeaving = !frame->pkt();
      if ( !isLeaving && attribute.attributeType() >= frame->currentAttrType() ) {
         return frame;
      }
      whileOthersAreTold( lib, attribute.attributeType(), [&] {
         if ( isLeaving ) {
            // Whoever is told of that sends this: it goes into another.
            openFrameDel( lib, intfId, secondPktContext );
         } else {
            sm.mrpTransmitTxPacket( intfId, secondPktContext );
         }
      } );
      // Whoever was told of that may have closed the interface.
      if ( !canTransmit( sm, intfId ) ) {
         return nullptr;
      }
   }
   return newFrame( lib, attribute, intfId, secondPktContext );
}

} // namespace

void MrpLib::mrpSendAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                   bool secondPktContext ) {
   Korv::Ptr< MrpTxPacketContext > const packetContext =
      frameFor( *this, attribute, intfId, secondPktContext );
   if ( !packetContext ) {
      return;
   }
   // Held: a watcher of what the encoders publish may send the frame from under them.
   Korv::Ptr< Pelk::Pkt > const pkt = packetContext->pkt();
   switch ( application_ ) {
   case MSRP: mrpSendMsrpAttributeIntf( attribute, intfId, secondPktContext ); break;
   case MVRP: mrpSendMvrpAttributeIntf( attribute, intfId, secondPktContext ); break;
   default:
      trace( 8, " Not supported Application:  ", application_ );
      Sornlog::log( Ring::applicationNotSent, static_cast< U32 >( application_ ) );
      break;
   }
   if ( packetContext->pkt() && isFull( *mrpSm_, *packetContext, intfId ) ) {
      whileOthersAreTold( *this, attribute.attributeType(),
                          [&] { mrpSm_->mrpTransmitTxPacket( intfId, secondPktContext ); } );
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
