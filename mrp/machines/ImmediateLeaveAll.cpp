// A LeaveAll of all types of one interface at once, for the agent.
//
// Unlike a periodic one it posts no registrar event: the neighbours redeclare, and no leave timer
// of this participant starts.
//
// Over a frame that leaves the application may close the interface, and with it goes the machine:
// what runs here names the interface and not the machine.
#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

namespace {

void postLeaveAll( MrpSm & sm, Pelk::IntfId intfId, U8 attrType ) {
   trace( 8, "MrpIntfPamSm::mrpAllLeaveAllSm( ", attrType, " )" );
   Korv::Ptr< MrpAttrIter > const iter = sm.mrpAttrIter( MrpAttrIter::Key( intfId, attrType ) );
   if ( !iter ) {
      sm.mrpLib()->mrpSendLeaveAll( attrType, intfId );
      return;
   }
   MrpParseContext & context = *sm.parseContext();
   context.sendTxLvAllIs( true );
   for ( auto member = iter->attributeKey().walk(); member; ++member ) {
      MrpAttribute const attribute( intfId, attrType, member.key() );
      if ( sm.isDeletePending( attribute ) ) {
         continue;
      }
      trace( 8, "AllLeaveAllSm: attributeKey = 0x", Korv::Hex{ attribute.attributeVal() },
             " Type = ", attrType, "interface = ", intfId );
      sm.mrpFillContextFromDatabase( attribute );
      sm.applicantSm()->applicantEventIs( txLvAll );
      sm.applicantSm()->handleApplicantEvent();
   }
   if ( context.sendTxLvAll() ) {
      sm.mrpLib()->mrpSendLeaveAll( attrType, intfId );
   }
   context.sendTxLvAllIs( false );
}

} // namespace

void MrpIntfPamSm::transmitAllLeaveAll() {
   Sornlog::log( Ring::intfPamTransmitAllLeaveAll, intfId_ );
   trace( 8, "MrpIntfPamSm::transmitAllLeaveAll( ", intfId_, " )" );
   Korv::assertThat( initialized() && !standbyMode(), "initialized() && !standbyMode()" );
   MrpSm & sm = mrpSm();
   Pelk::IntfId const intfId = intfId_;
   Korv::Seconds const period = getLeaveAllTime( sm, intfId );
   for ( U8 type = 1; type <= sm.maxAttrTypes(); ++type ) {
      postLeaveAll( sm, intfId, type );
      if ( sm.leaveAllSm()->doPushLeaveAll( intfId, type, period ) ) {
         sm.leaveAllSm()->publish( intfId, type, period );
      }
   }
   sm.mrpTransmitTxAttributes( intfId );
}

void MrpIntfPamSm::mrpAllLeaveAllSm( U8 attrType ) { postLeaveAll( mrpSm(), intfId_, attrType ); }

} // namespace Mrp
