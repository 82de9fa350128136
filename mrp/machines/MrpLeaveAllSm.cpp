#include "mrp/machines/MrpLeaveAllSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/vocabulary/VectorFormat.h"

namespace Mrp {

MrpLeaveAllSm::MrpLeaveAllSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig,
                              Korv::Ptr< Dovr::TimerWheel > timerWheel )
   : mrpSm_( mrpSm ), mrpConfig_( std::move( mrpConfig ) ), timerWheel_( std::move( timerWheel ) ) {
   korvMrpConfig_.notifierIs( mrpConfig_ );
   handleInitialized();
}

void MrpLeaveAllSm::handleInitialized() {
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
}

MrpIntfLeaveAllSm * MrpLeaveAllSm::intfLeaveAllSm( Pelk::IntfId intfId ) const {
   return Korv::memberAt( intfLeaveAllSm_, intfId );
}

MrpIntfLeaveAllSm * MrpLeaveAllSm::intfLeaveAllSmIs( Pelk::IntfId intfId ) {
   return Korv::memberIs( intfLeaveAllSm_, intfId, intfId, mrpSm_, timerWheel_ );
}

void MrpLeaveAllSm::publish( Pelk::IntfId intfId, U8 attributeType,
                             Korv::Seconds leaveAllTime ) const {
   mrpSm_->mrpStatus()
      ->application( mrpSm_->mrpLib()->application() )
      ->leaveAllTimeIs( MrpLeaveAllKey( intfId, attributeType ), leaveAllTime );
}

bool MrpLeaveAllSm::doPushLeaveAll( Pelk::IntfId intfId, U8 attributeType,
                                    Korv::Seconds leaveAllTime ) {
   MrpIntfLeaveAllSm * const intf = intfLeaveAllSm( intfId );
   return intf && intf->doPushLeaveAll( attributeType, leaveAllTime );
}

void MrpLeaveAllSm::mrpEnableLeaveAllPending( Pelk::IntfId intfId ) {
   trace( 8, "MrpLeaveAllSm::mrpEnableLeaveAllPending( ", intfId, " )" );
   Korv::Seconds const leaveAllTime = getLeaveAllTime( *mrpSm_, intfId );
   U8 const types = mrpNumberOfTypes( mrpSm_->mrpLib()->application() );
   for ( U8 type = 1; type <= types; ++type ) {
      mrpEnableLeaveAllPendingAttrType( intfId, type, leaveAllTime );
      if ( !intfLeaveAllSm( intfId ) ) {
         return; // whoever was told of the time has closed the interface
      }
   }
}

void MrpLeaveAllSm::mrpEnableLeaveAllPendingAttrType( Pelk::IntfId intfId, U8 attributeType,
                                                      Korv::Seconds leaveAllTime ) {
   trace( 8, "MrpLeaveAllSm::mrpEnableLeaveAllPendingAttrType() intf: ", intfId,
          " type: ", attributeType );
   MrpIntfLeaveAllSm * const intf = intfLeaveAllSmIs( intfId );
   if ( !intf->leaveAllPending( attributeType ) ) {
      intf->leaveAllPendingIs( attributeType )->timestampIs( Korv::now() + leaveAllTime );
      intf->doScheduleLeaveAllTimer( leaveAllTime );
   }
   publish( intfId, attributeType, leaveAllTime );
}

void MrpLeaveAllSm::mrpDisableLeaveAllPending( Pelk::IntfId intfId ) {
   trace( 8, "MrpLeaveAllSm::mrpDisableLeaveAllPending( ", intfId, " )" );
   U8 const types = mrpNumberOfTypes( mrpSm_->mrpLib()->application() );
   for ( U8 type = 1; type <= types; ++type ) {
      mrpDisableLeaveAllPendingAttrType( intfId, type );
   }
}

void MrpLeaveAllSm::mrpDisableLeaveAllPendingAttrType( Pelk::IntfId intfId, U8 attributeType ) {
   if ( MrpIntfLeaveAllSm * const intf = intfLeaveAllSm( intfId ) ) {
      intf->leaveAllPendingDel( attributeType );
      if ( intf->leaveAllPending().empty() ) {
         intfLeaveAllSmDel( intfId );
      }
   }
   mrpSm_->mrpStatus()
      ->application( mrpSm_->mrpLib()->application() )
      ->leaveAllTimeDel( MrpLeaveAllKey( intfId, attributeType ) );
}

void MrpLeaveAllSm::mrpPostLeaveAllToSm( Pelk::IntfId intfId, U8 attributeType,
                                         MrpApplicantEvent applicantEvent,
                                         MrpRegistrarEvent registrarEvent ) {
   Korv::assertThat( applicantEvent != rxLvAll && registrarEvent != regLvAll,
                     "applicantEvent != rxLvAll_ && registrarEvent != regLvAll_" );
   Korv::Ptr< MrpAttrIter > const iter =
      mrpSm_->mrpAttrIter( MrpAttrIter::Key( intfId, attributeType ) );
   if ( !iter ) {
      return;
   }
   for ( auto member = iter->attributeKey().walk(); member; ++member ) {
      MrpAttribute const attribute( intfId, attributeType, member.key() );
      if ( mrpSm_->isDeletePending( attribute ) ) {
         continue;
      }
      trace( 8, "PostLeaveAllToSm: attributeKey = 0x", Korv::Hex{ attribute.attributeVal() },
             " Type= ", attributeType, "interface = ", intfId );
      mrpSm_->mrpFillContextFromDatabase( attribute );
      mrpSm_->applicantSm()->applicantEventIs( applicantEvent );
      mrpSm_->applicantSm()->handleApplicantEvent();
      mrpSm_->registrarSm()->registrarEventIs( registrarEvent );
      mrpSm_->registrarSm()->handleRegistrarEvent();
   }
}

void MrpLeaveAllSm::handleCfgTimersEnabled() {
   trace( 8, "void Mrp::MrpLeaveAllSm::handleCfgTimersEnabled()" );
}

void MrpLeaveAllSm::handleCfgLeaveAllTime() {
   for ( auto intf = intfLeaveAllSm_.walk(); intf; ++intf ) {
      handleCfgIntfLeaveAllTime( intf.key() );
   }
}

void MrpLeaveAllSm::handleCfgIntfLeaveAllTime( Pelk::IntfId intfId ) {
   if ( Korv::Ptr< MrpIntfLeaveAllSm > const intf = intfLeaveAllSm( intfId ) ) {
      intf->handleCfgIntfLeaveAllTime();
   }
}

} // namespace Mrp
