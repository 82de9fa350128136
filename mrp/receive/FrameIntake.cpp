// The way in: one frame from an interface's packet access, checked, parsed, applied, answered.
//
// The cursor, here and in the parser, is the packet's front: whoever has read something moves the
// front behind it.
#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/pelk/EthHdr.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/receive/FutureProtocolVersion.h"

#include <cstring>

namespace Mrp {

namespace {

constexpr U16 vlanTagType = 0x8100;
constexpr std::size_t vlanTagBytes = 4;
constexpr std::size_t tagControlAt = 14;
constexpr std::size_t typeBehindTagAt = 16;

// The frame's type, which in a tagged frame stands behind the tag. The tag is not cut out: the
// cursor moves on by its length, so that the MRPDU begins 14 bytes from there in every frame.
U16 takeType( Pelk::Pkt & pkt ) {
   U16 const type = Pelk::EthHdr::at( pkt.frontData() ).typeOrLen();
   if ( type != vlanTagType ) {
      return type;
   }
   trace( 6, "Received 802.1Q-tagged frame with VLAN ID ",
          Korv::networkU16At( pkt.frontData() + tagControlAt ) & 0x0FFF );
   U16 const typeBehindTag = Korv::networkU16At( pkt.frontData() + typeBehindTagAt );
   pkt.delSharedHeadData( vlanTagBytes );
   return typeBehindTag;
}

// A copy of the frame from the cursor on: of a tagged frame, the frame less its first four bytes.
Korv::Ptr< Pelk::Pkt > copyFromCursor( Pelk::Pkt const & pkt ) {
   Korv::Ptr< Pelk::Pkt > copy = Pelk::globalPktManager().newPkt();
   if ( copy ) {
      copy->newSharedHeadData( pkt.frontBytes() );
      std::memcpy( copy->frontData(), pkt.frontData(), pkt.frontBytes() );
   }
   return copy;
}

} // namespace

void MrpIntfPamSm::handleMrpdu() {
   if ( standbyMode_ ) {
      return;
   }
   Korv::assertThat( initialized(), "initialized()" );
   Korv::Ptr< Pelk::Pkt > const pkt = pam_ ? pam_->rxPkt() : nullptr;
   if ( !pkt ) {
      return;
   }
   Sornlog::log( Ring::intfPamHandleMrpdu, intfId_ );
   trace( 8, "Received frame on interface ", intfId_, " (length=", pkt->bytes() );
   Korv::assertThat( pkt->bytes() >= sizeof( Pelk::EthHdr ),
                     "pkt->bytes() >= sizeof( Pelk::EthHdr )" );

   // Names of what outlives this machine, which may end in anything below: see its header.
   MrpSm & sm = mrpSm();
   MrpPamSm & pamSm = *mrpPamSm_;
   Pelk::IntfId const intfId = intfId_;
   MrpLib & lib = *sm.mrpLib();
   MrpCounters & counters = *sm.mrpCounters();
   if ( Pelk::EthHdr::at( pkt->frontData() ).dst() != lib.applicationMacAddr() ) {
      trace( 2, "Received frame with incorrect DMAC -- ignoring" );
      Sornlog::log( Ring::incorrectDmac );
      counters.numOfIncorrectDmacInc( 1 );
      counters.numOfPktsProcessedInc( 1 );
      return;
   }
   if ( takeType( *pkt ) != lib.applicationEtype() ) {
      trace( 4, "Received frame with incorrect EtherType -- ignoring" );
      Sornlog::log( Ring::incorrectEtherType );
      counters.numOfIncorrectEtypeInc( 1 );
      counters.numOfPktsProcessedInc( 1 );
      return;
   }
   if ( sm.mrpConfig()->mrpFlooding() ) {
      // At the packet limit there is no copy, and the frame is not flooded.
      if ( auto const copy = copyFromCursor( *pkt ) ) {
         pamSm.floodMsrpdu( intfId, copy );
      }
   }
   pkt->delSharedHeadData( sizeof( Pelk::EthHdr ) );
   sm.parseContext()->intfIdIs( intfId );
   sm.parseMrpdu( pkt );
   // Also after a malformed frame: what was saved before the failure counts.
   sm.processParsedAttributes( intfId );
   counters.numOfPktsProcessedInc( 1 );
   sm.mrpTransmitTxAttributes();
   futureProtocolVersion = false;
}

} // namespace Mrp
