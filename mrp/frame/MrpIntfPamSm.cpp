#include "mrp/frame/MrpIntfPamSm.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

MrpIntfPamSm::MrpIntfPamSm( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam, bool standbyMode,
                            MrpPamSm * mrpPamSm )
   : intfId_( intfId ), pam_( std::move( pam ) ), standbyMode_( standbyMode ),
     mrpPamSm_( mrpPamSm ) {
   korvPam_.notifierIs( pam_.ptr() );
   handleInitialized();
}

MrpIntfPamSm::~MrpIntfPamSm() { doClose(); }

MrpSm & MrpIntfPamSm::mrpSm() const { return *mrpPamSm_->mrpSm(); }

void MrpIntfPamSm::handleInitialized() {
   Sornlog::log( Ring::intfPamInitialized, intfId_ );
   trace( 8, "MrpIntfPamSm::handleInitialized( ", intfId_, " )" );
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   handleStandbyMode();
}

// There is no branch for going to standby: that does not happen.
void MrpIntfPamSm::handleStandbyMode() {
   Sornlog::log( Ring::intfPamStandbyMode, intfId_ );
   trace( 8, "MrpIntfPamSm::handleStandbyMode()" );
   Korv::assertThat( initialized(), "initialized()" );
   if ( !standbyMode_ ) {
      mrpSm().leaveAllSm()->mrpEnableLeaveAllPending( intfId_ );
   }
}

void MrpIntfPamSm::doClose() {
   Sornlog::log( Ring::intfPamDoClose, intfId_ );
   trace( 8, "MrpIntfPamSm::doClose( ", intfId_, " )" );
   Korv::assertThat( initialized(), "initialized()" );
   if ( !standbyMode_ ) {
      mrpSm().leaveAllSm()->mrpDisableLeaveAllPending( intfId_ );
   }
}

void MrpIntfPamSm::pamIs( Korv::Ptr< Pelk::Pam > pam ) {
   if ( pam == pam_ ) {
      return;
   }
   pam_ = std::move( pam );
   korvPam_.notifierIs( pam_.ptr() );
   if ( pam_ ) {
      handleMrpdu();
   }
}

} // namespace Mrp
