// Closing frames: EndMarks, header and ProtocolVersion in front, the tail cut, and out.
//
// An attribute became bytes when a machine decided to send it; the frame that holds those bytes
// leaves here, when the attribute order breaks, when it is full, at the end of a received frame, at
// a LeaveAll, on disable, and at the latest at the transmit timer.
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/pelk/EthHdr.h"
#include "mrp/transmit/VectorEncoding.h"
#include "mrp/vocabulary/MrpMsrp.h"

namespace Mrp {

namespace {

// The Ethernet header and the ProtocolVersion.
constexpr std::size_t frontBytes = sizeof( Pelk::EthHdr ) + 1;
constexpr U16 endMarkBytes = 2;

void closeMessage( MrpTxPacketContext const & context, MrpApplication application,
                   U8 * endOfList ) {
   Korv::networkU16IsAt( endOfList, endOfMark );
   if ( application == MSRP ) {
      auto & header = *reinterpret_cast< MsrpMessageHeader * >( context.curMessage() );
      header.attributeListLengthIs(
         static_cast< U16 >( header.attributeListLength() + endMarkBytes ) );
   }
}

} // namespace

void MrpSm::mrpTransmitTxPacket( Pelk::IntfId intfId, bool secondPktContext ) {
   auto const del = [this, intfId, secondPktContext] {
      if ( secondPktContext ) {
         mrpLib_->mrpTxSecondPacketContextDel( intfId );
      } else {
         mrpLib_->mrpTxPacketContextDel( intfId );
      }
   };
   Korv::Ptr< MrpTxPacketContext > const context = secondPktContext
                                                      ? mrpLib_->mrpTxSecondPacketContext( intfId )
                                                      : mrpLib_->mrpTxPacketContext( intfId );
   if ( !context ) {
      return;
   }
   if ( mrpConfig_->mrpFlooding() ) {
      del(); // while frames are flooded, what the machines say is thrown away
      return;
   }
   Korv::Ptr< Pelk::Pkt > const pkt = context->pkt();
   if ( !pkt ) {
      return;
   }
   U8 * const body = pkt->frontData();
   Korv::Ptr< Pelk::Pam > const to = pam( context->intfId() );
   MrpApplication const application = mrpLib_->application();
   U16 n = mrpGetNumOfPackedBytes( *context, static_cast< U8 >( application ) );
   if ( !to ) {
      trace( 4, " Tx is being Attempted before the PAM is enabled " );
      return;
   }
   if ( context->curMessage() ) {
      closeMessage( *context, application, body + n );
      n = static_cast< U16 >( n + endMarkBytes );
   }
   Korv::networkU16IsAt( body + n, endOfMark );

   pkt->newSharedHeadData( frontBytes );
   Pelk::EthHdr & header = Pelk::EthHdr::at( pkt->frontData() );
   header.dstIs( mrpLib_->applicationMacAddr() );
   header.srcIs( sourceAddress( intfId ) );
   header.typeOrLenIs( mrpLib_->applicationEtype() );
   pkt->frontData()[sizeof header] = protocolVersion;

   U16 const total = static_cast< U16 >( n + frontBytes + endMarkBytes );
   Korv::assertThat( total <= pkt->frontBytes(), "numOfPackedBytes <= pkt->frontBytes()" );
   pkt->delSharedTailData( pkt->frontBytes() - total );
   mrpLib_->mrpCurrentTxIntfIs( context->intfId() );
   mrpCounters_->numOfPktsTransmittedInc( 1 );
   trace( 8, " A pkt is sent on : ", intfId );
   to->txPkt( pkt );
   del();
}

void MrpSm::mrpTransmitTxAttributes( Pelk::IntfId intfId ) {
   mrpTransmitTxPacket( intfId, false );
   mrpTransmitTxPacket( intfId, true );
}

// The first map only: a second frame whose first has left already stays open until its interface
// has a first one again, or until a call for that interface.
void MrpSm::mrpTransmitTxAttributes() {
   for ( auto member = mrpLib_->mrpTxPacketContext().walk(); member; ++member ) {
      mrpTransmitTxAttributes( Pelk::IntfId( member.key() ) );
   }
}

} // namespace Mrp
