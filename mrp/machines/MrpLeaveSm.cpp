#include "mrp/machines/MrpLeaveSm.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

MrpLeaveSm::MrpLeaveSm( MrpAttribute const & key, MrpSm * mrpSm,
                        Korv::Ptr< Dovr::TimerWheel > timerWheel )
   : key_( key ), mrpSm_( mrpSm ), leaveTimer_( std::move( timerWheel ), *this ) {
   handleInitialized();
}

// The system-wide time: whoever made the machine replaces the schedule right away.
void MrpLeaveSm::handleInitialized() {
   trace( 8, "void Mrp::MrpLeaveSm::handleInitialized()" );
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   doScheduleLeaveTimer( mrpSm_->mrpConfig()->leaveTime() );
}

void MrpLeaveSm::doScheduleLeaveTimer( Korv::Seconds expiryTime ) {
   Korv::Seconds const at = Korv::now() + expiryTime;
   trace( 8, "Leave timer will expire at: ", at );
   leaveTimer_.timeMinIs( at );
}

void MrpLeaveSm::handleLeaveTimer() {
   if ( !initialized_ ) {
      return;
   }
   trace( 8, "MrpLeaveSm::handleLeaveTimer() ", key_ );
   // Held, so that the machine lasts to the end of this, in the course of which it is removed.
   Korv::Ptr< MrpLeaveSm > const self( this );
   doReceiveWaitingFrame();
   for ( auto member = leavePending_.walk(); member; ++member ) {
      handleLeavePending( member.key() );
   }
   // Removed from both collections by its key. The shared machine of a type and the explicit
   // machine of the type's attribute 0 have the same one: whichever fires first takes the other
   // along, and what waited on that one stays in Lv until its next leave.
   mrpSm_->registrarSm()->leaveSmDel( key_ );
   mrpSm_->registrarSm()->explicitLeaveSmDel( key_ );
}

// A join that waits in the socket is to reach the registrar before its attribute expires.
void MrpLeaveSm::doReceiveWaitingFrame() {
   // Not held: see MrpIntfPamSm.h.
   MrpIntfPamSm * const intf = mrpSm_->mrpPamSm()->mrpIntfPamSm( key_.intfId() );
   if ( !intf ) {
      return;
   }
   auto const * const device = dynamic_cast< Pelk::EthDevPam const * >( intf->pam().ptr() );
   if ( device && device->hasDataOnSocket() ) {
      intf->handleMrpdu();
   }
}

void MrpLeaveSm::handleLeavePending( U64 attributeKey ) {
   if ( !leavePending( attributeKey ) ) {
      return;
   }
   mrpSm_->mrpFillContextFromDatabase(
      MrpAttribute( key_.intfId(), key_.attributeType(), attributeKey ) );
   mrpSm_->registrarSm()->registrarEventIs( regLeaveTimer );
   mrpSm_->registrarSm()->handleRegistrarEvent();
}

} // namespace Mrp
