// The application's requests: interfaces on and off, and what that does to the database.
#include "mrp/database/MrpDatabaseSm.h"
#include "mrp/frame/MrpLib.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/Trace.h"

namespace Mrp {

void MrpLib::mrpJoinReq( MrpParameters const & ) {}
void MrpLib::mrpLeaveReq( MrpParameters const & ) {}

void MrpLib::mrpInterfaceEnable( Pelk::IntfId intfId ) {
   trace( 8, "MrpLib::mrpInterfaceEnable( ", intfId, " )" );
   mrpSm_->desiredIntfDir()->intfDesiredIs( intfId, true );
}

void MrpLib::mrpInterfaceDisable( Pelk::IntfId intfId ) {
   trace( 8, "MrpLib::mrpInterfaceDisable( ", intfId, " )" );
   mrpSm_->mrpTransmitTxAttributes( intfId );
   // A frame that stayed open because the Pam had gone ends here, unsent.
   mrpTxPacketContextDel( intfId );
   mrpTxSecondPacketContextDel( intfId );
   mrpCleanUpIntfDatabase( intfId );
   mrpSm_->desiredIntfDir()->intfDesiredDel( intfId );
}

void MrpLib::mrpCleanUpIntfDatabase( Pelk::IntfId intfId ) {
   if ( mrpSm_->standbyMode() ) {
      return;
   }
   mrpSm_->registrarSm()->mrpCancelLeavePending( intfId );
   for ( U8 type = 1; type <= mrpSm_->maxAttrTypes(); ++type ) {
      Korv::Ptr< MrpAttrIter > const iter = mrpSm_->mrpAttrIter( MrpAttrIter::Key( intfId, type ) );
      if ( !iter ) {
         continue;
      }
      for ( auto member = iter->attributeKey().walk(); member; ++member ) {
         mrpSm_->addAttrToDeletePending( MrpAttribute( intfId, type, member.key() ) );
      }
   }
}

void MrpLib::mrpCleanUpIntfDatabaseAttribute( Pelk::IntfId intfId, U8 attrType, U64 attrKey ) {
   if ( mrpSm_->standbyMode() ) {
      return;
   }
   MrpApplicationDatabase const * const database = mrpSm_->mrpStatus()->application( application_ );
   MrpIntfTypeApplicant const * const type =
      database ? database->intfTypeApplicant( intfId, attrType ) : nullptr;
   if ( type && type->mrpAttribute( attrKey ) ) {
      mrpSm_->addAttrToDeletePending( MrpAttribute( intfId, attrType, attrKey ) );
   }
}

// No Lv on the wire, no indication, no event.
void MrpLib::mrpHandleInternalLeave() {
   trace( 8, " Type = ", mrpSm_->parseContext()->attributeType() );
   trace( 8, " Adv streamId = ", talkerTx_.streamId() );
   trace( 8, " Failed streamId = ", talkerFailedTx_.talkerAdvertiseAttribute().streamId() );
   trace( 8, " Listener Stream Id = ", listenerVector );
   mrpSm_->registrarSm()->mrpDeleteAttrFromLeavePending();
   mrpSm_->mrpDeleteAttrFromDatabase();
}

void MrpLib::mrpDeleteAttrOnDefaultStates() {
   MrpAttrDatabase const & attribute = *mrpSm_->mrpGetAttribute( false );
   trace( 6, " mrpDeleteAttrOnDefaultStates called. reg state= ", attribute.registrarState() );
   if ( attribute.inDefaultStates() ) {
      mrpSm_->registrarSm()->mrpDeleteAttrFromLeavePending();
      mrpSm_->mrpDeleteAttrFromDatabase();
   }
}

} // namespace Mrp
