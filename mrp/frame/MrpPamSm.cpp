#include "mrp/frame/MrpPamSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/Members.h"
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
      MrpIntfPamSm & sm = *intf.value(); // not held: see its header
      sm.standbyModeIs( standbyMode_ );
      sm.handleStandbyMode();
   }
}

MrpIntfPamSm * MrpPamSm::mrpIntfPamSm( Pelk::IntfId intfId ) const {
   return Korv::memberAt( mrpIntfPamSm_, intfId );
}

MrpIntfPamSm * MrpPamSm::mrpIntfPamSmIs( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam,
                                         bool standbyMode ) {
   return Korv::memberIs( mrpIntfPamSm_, intfId, intfId, std::move( pam ), standbyMode, this );
}

namespace {

// For as long as it lives the interface is in the set.
class Changing {
 public:
   using Set = Korv::HashMap< Pelk::IntfId, bool >;

   Changing( Set & set, Pelk::IntfId intfId ) : set_( set ), intfId_( intfId ) {
      set_.insertOrAssign( intfId_, true );
   }
   ~Changing() { set_.erase( intfId_ ); }
   Changing( Changing const & ) = delete;
   Changing & operator=( Changing const & ) = delete;

 private:
   Set & set_;
   Pelk::IntfId intfId_;
};

} // namespace

void MrpPamSm::handlePam( Pelk::IntfId intfId ) {
   Sornlog::log( Ring::pamHandlePam, intfId );
   trace( 8, "MrpPamSm::handlePam( ", intfId, " )" );
   Korv::assertThat( initialized(), "initialized()" );
   if ( changing_.isMember( intfId ) ) {
      return;
   }
   Changing const changing( changing_, intfId );
   bool const isMember = mrpIntfPamSm_.isMember( intfId );
   if ( pamCollection_->intfPam( intfId ) ) {
      Korv::assertThat( !isMember, "!mrpIntfPamSmIteratorConst().isMemberOf( intfId )" );
   } else {
      Korv::assertThat( isMember, "mrpIntfPamSmIteratorConst().isMemberOf( intfId )" );
   }
   for ( ;; ) {
      Korv::Ptr< Pelk::Pam > const pam = pamCollection_->intfPam( intfId );
      MrpIntfPamSm const * const sm = mrpIntfPamSm( intfId ); // not held: see its header
      if ( sm ? pam && pam == sm->pam() : !pam ) {
         return;
      }
      if ( sm ) {
         mrpIntfPamSmDel( intfId );
      } else {
         mrpIntfPamSmIs( intfId, pam, standbyMode_ );
      }
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
   if ( MrpIntfPamSm * const sm = mrpIntfPamSm( intfId ) ) { // not held: see its header
      sm->transmitAllLeaveAll();
   }
}

} // namespace Mrp
