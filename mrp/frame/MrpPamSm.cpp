#include "mrp/frame/MrpPamSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/pelk/EthHdr.h"

namespace Mrp {

MrpPamSm::MrpPamSm( Korv::Ptr< Interface::EthDevPamCollection > pamCollection, bool standbyMode,
                    MrpSm * mrpSm )
   : pamCollection_( std::move( pamCollection ) ), standbyMode_( standbyMode ), mrpSm_( mrpSm ) {
   korvPamCollection_.notifierIs( pamCollection_.ptr() );
   handleInitialized();
}

MrpPamSm::~MrpPamSm() = default;

void MrpPamSm::handleInitialized() {
   Sornlog::log( Ring::pamInitialized );
   trace( 8, "void Mrp::MrpPamSm::handleInitialized()" );
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   for ( auto pam = pamCollection_->intfPam().walk(); pam; ++pam ) {
      handlePam( pam.key() );
   }
}

void MrpPamSm::handleStandbyMode() {
   Sornlog::log( Ring::pamStandbyMode );
   trace( 8, "void Mrp::MrpPamSm::handleStandbyMode()" );
   Korv::assertThat( initialized(), "initialized()" );
   for ( auto intf = mrpIntfPamSm_.walk(); intf; ++intf ) {
      Korv::Ptr< MrpIntfPamSm > const sm = intf.value();
      sm->standbyModeIs( standbyMode_ );
      sm->handleStandbyMode();
   }
}

MrpIntfPamSm * MrpPamSm::mrpIntfPamSm( Pelk::IntfId intfId ) const {
   auto const * const found = mrpIntfPamSm_.find( intfId );
   return found ? found->ptr() : nullptr;
}

MrpIntfPamSm * MrpPamSm::mrpIntfPamSmIs( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam,
                                         bool standbyMode ) {
   return mrpIntfPamSm_
      .findOrMake( intfId,
                   [&] {
                      return Korv::Ptr< MrpIntfPamSm >(
                         new MrpIntfPamSm( intfId, std::move( pam ), standbyMode, this ) );
                   } )
      .ptr();
}

void MrpPamSm::mrpIntfPamSmDel( Pelk::IntfId intfId ) { mrpIntfPamSm_.erase( intfId ); }

void MrpPamSm::mrpIntfPamSmDelAll() {
   for ( auto intf = mrpIntfPamSm_.walk(); intf; ++intf ) {
      mrpIntfPamSmDel( Pelk::IntfId( intf.key() ) );
   }
}

void MrpPamSm::handlePam( Pelk::IntfId intfId ) {
   Sornlog::log( Ring::pamHandlePam, intfId );
   trace( 8, "MrpPamSm::handlePam( ", intfId, " )" );
   Korv::assertThat( initialized(), "initialized()" );
   bool const isMember = mrpIntfPamSm_.isMember( intfId );
   if ( auto const * const pam = pamCollection_->intfPam().find( intfId ) ) {
      Korv::assertThat( !isMember, "!mrpIntfPamSmIteratorConst().isMemberOf( intfId )" );
      mrpIntfPamSmIs( intfId, *pam, standbyMode_ );
   } else {
      Korv::assertThat( isMember, "mrpIntfPamSmIteratorConst().isMemberOf( intfId )" );
      mrpIntfPamSmDel( intfId );
   }
}

void MrpPamSm::floodMsrpdu( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pkt > const & pkt ) {
   Sornlog::log( Ring::pamFloodMsrpdu, intfId );
   trace( 8, "MrpPamSm::floodMsrpdu( ", intfId, " )" );
   Korv::assertThat( initialized(), "initialized()" );
   Pelk::EthHdr::at( pkt->frontData() ).srcIs( mrpSm_->sourceAddress( intfId ) );
   for ( auto intf = mrpIntfPamSm_.walk(); intf; ++intf ) {
      if ( intf.key() != intfId && intf.value()->pam() ) {
         trace( 8, "Msrp Tx on ", intf.key() );
         intf.value()->pam()->txPkt( pkt );
      }
   }
}

void MrpPamSm::transmitAllLeaveAll( Pelk::IntfId intfId ) {
   Sornlog::log( Ring::pamTransmitAllLeaveAll, intfId );
   trace( 8, "MrpPamSm::transmitAllLeaveAll( ", intfId, " )" );
   Korv::assertThat( initialized() && !standbyMode(), "initialized() && !standbyMode()" );
   if ( Korv::Ptr< MrpIntfPamSm > const sm = mrpIntfPamSm( intfId ) ) {
      sm->transmitAllLeaveAll();
   }
}

} // namespace Mrp
