// Closing frames: EndMarks, header and ProtocolVersion in front, the tail cut, and out.
//
// An attribute became bytes when a machine decided to send it; the frame that holds those bytes
// leaves here, when the attribute order breaks, when it is full, after the LeaveAll of a received
// frame and at its end, after a LeaveAll sent, on disable, and at the latest at the transmit timer.
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/pelk/EthHdr.h"
#include "mrp/transmit/OpenFrame.h"
#include "mrp/transmit/VectorEncoding.h"
#include "mrp/vocabulary/VectorFormat.h"

namespace Mrp {

namespace {

// The Ethernet header and the ProtocolVersion.
constexpr std::size_t headBytes = sizeof( Pelk::EthHdr ) + 1;

// Ends the open message, if there is one, and the MRPDU; the bytes of the body.
U16 closeBody( MrpTxPacketContext const & context, MrpApplication application ) {
   Pelk::Pkt & pkt = *context.pkt();
   U16 n = mrpGetNumOfPackedBytes( context, static_cast< U8 >( application ) );
   Korv::assertThat( n + 2u * endMarkBytes <= pkt.frontBytes(),
                     "numOfPackedBytes <= pkt->frontBytes()" );
   U8 * const body = pkt.frontData();
   if ( context.curMessage() ) {
      Korv::networkU16IsAt( body + n, endOfMark );
      if ( application == MSRP ) {
         auto & header = *reinterpret_cast< MsrpMessageHeader * >( context.curMessage() );
         header.attributeListLengthIs(
            static_cast< U16 >( header.attributeListLength() + endMarkBytes ) );
      }
      n = static_cast< U16 >( n + endMarkBytes );
   }
   Korv::networkU16IsAt( body + n, endOfMark );
   return static_cast< U16 >( n + endMarkBytes );
}

// Puts the head before the body, and cuts off what is left of the buffer behind it.
void closeFrame( MrpSm const & sm, Pelk::IntfId intfId, Pelk::Pkt & pkt, U16 bodyBytes ) {
   pkt.newSharedHeadData( headBytes );
   Pelk::EthHdr & header = Pelk::EthHdr::at( pkt.frontData() );
   header.dstIs( sm.mrpLib()->applicationMacAddr() );
   header.srcIs( sm.sourceAddress( intfId ) );
   header.typeOrLenIs( sm.mrpLib()->applicationEtype() );
   pkt.frontData()[sizeof header] = MrpSm::protocolVersion();

   U16 const total = static_cast< U16 >( bodyBytes + headBytes );
   Korv::assertThat( total <= pkt.frontBytes(), "numOfPackedBytes <= pkt->frontBytes()" );
   pkt.delSharedTailData( pkt.frontBytes() - total );
}

} // namespace

void MrpSm::mrpTransmitTxPacket( Pelk::IntfId intfId, bool secondPktContext ) {
   Korv::Ptr< MrpTxPacketContext > const context = openFrame( *mrpLib_, intfId, secondPktContext );
   if ( !context ) {
      return;
   }
   if ( mrpConfig_->mrpFlooding() ) {
      // While frames are flooded, what the machines say is thrown away.
      openFrameDel( *mrpLib_, intfId, secondPktContext );
      return;
   }
   Korv::Ptr< Pelk::Pkt > const pkt = context->pkt();
   if ( !pkt ) {
      return;
   }
   Korv::Ptr< Pelk::Pam > const to = pam( context->intfId() );
   if ( !to ) {
      trace( 4, " Tx is being Attempted before the PAM is enabled " );
      return;
   }
   closeFrame( *this, intfId, *pkt, closeBody( *context, mrpLib_->application() ) );
   // From here on others run (an override, a watcher, the Pam), and may come back with more to
   // send: the closed frame is out of their reach, and theirs goes into a context of its own.
   context->pktIs( nullptr );
   mrpLib_->mrpCurrentTxIntfIs( context->intfId() );
   mrpCounters_->numOfPktsTransmittedInc( 1 );
   trace( 8, " A pkt is sent on : ", intfId );
   to->txPkt( pkt );
   if ( openFrame( *mrpLib_, intfId, secondPktContext ) == context.ptr() ) {
      openFrameDel( *mrpLib_, intfId, secondPktContext );
   }
}

void MrpSm::mrpTransmitTxAttributes( Pelk::IntfId intfId ) {
   mrpTransmitTxPacket( intfId, false );
   mrpTransmitTxPacket( intfId, true );
}

// The first map only: a second frame whose first has left already stays open until its interface
// has a first one again, or until a call for that interface.
//
// As many as there are at the start: a frame opened meanwhile, by somebody who is told of one that
// leaves, waits for the next turn. Else an application that always had an answer would hold the
// loop for ever.
void MrpSm::mrpTransmitTxAttributes() {
   std::size_t left = mrpLib_->mrpTxPacketContext().size();
   for ( auto member = mrpLib_->mrpTxPacketContext().walk(); member && left > 0;
         ++member, --left ) {
      mrpTransmitTxAttributes( Pelk::IntfId( member.key() ) );
   }
}

} // namespace Mrp
