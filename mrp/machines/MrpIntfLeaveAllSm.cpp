#include "mrp/machines/MrpIntfLeaveAllSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/Members.h"

#include <algorithm>

namespace Mrp {

namespace {
// A type due within this of now goes out now; one that is overdue after a pass is tried again
// after it.
constexpr Korv::Seconds slack = 0.1;
} // namespace

MrpIntfLeaveAllSm::MrpIntfLeaveAllSm( Pelk::IntfId intfId, MrpSm * mrpSm,
                                      Korv::Ptr< Dovr::TimerWheel > timerWheel )
   : intfId_( intfId ), mrpSm_( mrpSm ), leaveAllTimer_( std::move( timerWheel ), *this ) {
   handleInitialized();
}

void MrpIntfLeaveAllSm::handleInitialized() {
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   leaveAllTimer_.timeMinIs( Korv::never );
}

MrpLeaveAllTimer * MrpIntfLeaveAllSm::leaveAllPending( U8 attrType ) const {
   return Korv::memberAt( leaveAllPending_, attrType );
}

MrpLeaveAllTimer * MrpIntfLeaveAllSm::leaveAllPendingIs( U8 attrType ) {
   return Korv::memberIs( leaveAllPending_, attrType, attrType );
}

bool MrpIntfLeaveAllSm::doPushLeaveAll( U8 attrType, Korv::Seconds leaveAllTime ) {
   MrpLeaveAllTimer * const timer = leaveAllPending( attrType );
   if ( !timer ) {
      return false;
   }
   timer->timestampIs( Korv::now() + leaveAllTime );
   doScheduleLeaveAllTimer( leaveAllTime );
   return true;
}

void MrpIntfLeaveAllSm::doScheduleLeaveAllTimer( Korv::Seconds expiryTime ) {
   Korv::Seconds const at = Korv::now() + expiryTime;
   if ( at > leaveAllTimer_.timeMin() ) {
      return;
   }
   leaveAllTimer_.timeMinIs( at );
}

void MrpIntfLeaveAllSm::doRestart( MrpLeaveAllTimer & type, Korv::Seconds leaveAllTime ) {
   type.timestampIs( Korv::now() + leaveAllTime );
   mrpSm_->leaveAllSm()->publish( intfId_, type.attrType(), leaveAllTime );
}

void MrpIntfLeaveAllSm::handleLeaveAllTimer() {
   Korv::Ptr< MrpIntfLeaveAllSm > const self( this );
   Korv::Seconds const period = getLeaveAllTime( *mrpSm_, intfId_ );
   Korv::Seconds next = Korv::never;
   for ( auto type = leaveAllPending_.walk(); type; ++type ) {
      Korv::Ptr< MrpLeaveAllTimer > const timer = type.value();
      handleTxLeaveAll( type.key(), period );
      next = std::min( next, timer->timestamp() );
   }
   mrpSm_->mrpTransmitTxAttributes( intfId_ );
   if ( Korv::now() > next ) {
      next = Korv::now() + slack;
   }
   // The one place where the wake-up can move later.
   leaveAllTimer_.timeMinIs( next );
}

void MrpIntfLeaveAllSm::handleTxLeaveAll( U8 attrType, Korv::Seconds leaveAllTime ) {
   Korv::Ptr< MrpLeaveAllTimer > const timer = leaveAllPending( attrType );
   if ( !timer || Korv::now() - timer->timestamp() < -slack ) {
      return;
   }
   trace( 8, " handleTxLeaveAll. type = ", attrType, " intfId = ", intfId_ );
   MrpParseContext & context = *mrpSm_->parseContext();
   context.sendTxLvAllIs( true );
   mrpSm_->leaveAllSm()->mrpPostLeaveAllToSm( intfId_, attrType, txLvAll, regTxLvAll );
   if ( context.sendTxLvAll() ) {
      // No vector was opened that could have carried the mark.
      mrpSm_->mrpLib()->mrpSendLeaveAll( attrType, intfId_ );
   }
   context.sendTxLvAllIs( false );
   // Not of an interface that was closed meanwhile.
   if ( leaveAllPending( attrType ) == timer.ptr() ) {
      doRestart( *timer, leaveAllTime );
   }
}

void MrpIntfLeaveAllSm::handleCfgIntfLeaveAllTime() {
   Korv::Seconds const period = getLeaveAllTime( *mrpSm_, intfId_ );
   for ( auto type = leaveAllPending_.walk(); type; ++type ) {
      doRestart( *type.value(), period );
   }
   doScheduleLeaveAllTimer( period );
}

} // namespace Mrp
