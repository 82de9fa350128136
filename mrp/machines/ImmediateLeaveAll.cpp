// A LeaveAll of all types of one interface at once, for the agent.
//
// Unlike a periodic one it posts no registrar event: the neighbours redeclare, and no leave timer
// of this participant starts.
#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

void MrpIntfPamSm::transmitAllLeaveAll() {
   Sornlog::log( Ring::intfPamTransmitAllLeaveAll, intfId_ );
   trace( 8, "MrpIntfPamSm::transmitAllLeaveAll( ", intfId_, " )" );
   Korv::assertThat( initialized() && !standbyMode(), "initialized() && !standbyMode()" );
   MrpSm & sm = mrpSm();
   Korv::Seconds const period = getLeaveAllTime( sm, intfId_ );
   for ( U8 type = 1; type <= sm.maxAttrTypes(); ++type ) {
      mrpAllLeaveAllSm( type );
      if ( sm.leaveAllSm()->doPushLeaveAll( intfId_, type, period ) ) {
         sm.leaveAllSm()->publish( intfId_, type, period );
      }
   }
   sm.mrpTransmitTxAttributes( intfId_ );
}

void MrpIntfPamSm::mrpAllLeaveAllSm( U8 attrType ) {
   trace( 8, "MrpIntfPamSm::mrpAllLeaveAllSm( ", attrType, " )" );
   MrpSm & sm = mrpSm();
   Korv::Ptr< MrpAttrIter > const iter = sm.mrpAttrIter( MrpAttrIter::Key( intfId_, attrType ) );
   if ( !iter ) {
      sm.mrpLib()->mrpSendLeaveAll( attrType, intfId_ );
      return;
   }
   MrpParseContext & context = *sm.parseContext();
   context.sendTxLvAllIs( true );
   for ( auto member = iter->attributeKey().walk(); member; ++member ) {
      MrpAttribute const attribute( intfId_, attrType, member.key() );
      if ( sm.isDeletePending( attribute ) ) {
         continue;
      }
      trace( 8, "AllLeaveAllSm: attributeKey = 0x", Korv::Hex{ attribute.attributeVal() },
             " Type = ", attrType, "interface = ", intfId_ );
      sm.mrpFillContextFromDatabase( attribute );
      sm.applicantSm()->applicantEventIs( txLvAll );
      sm.applicantSm()->handleApplicantEvent();
   }
   if ( context.sendTxLvAll() ) {
      sm.mrpLib()->mrpSendLeaveAll( attrType, intfId_ );
   }
   context.sendTxLvAllIs( false );
}

} // namespace Mrp
