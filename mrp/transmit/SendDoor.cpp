// The application's door to the transmit path.
//
// The subclass has filled the Tx field and queued the interfaces. The door encodes nothing: it
// turns the event into an applicant event, a LeaveAll or an internal leave, once per queued entry.
// All but the LeaveAll run on the interface of the parameters, whatever was queued; the subclass
// decides what goes into both.
#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/Trace.h"
#include "mrp/transmit/OthersTold.h"

namespace Mrp {

namespace {

void post( MrpSm & sm, MrpApplicantEvent event ) {
   whileOthersAreTold( *sm.mrpLib(), sm.parseContext()->attributeType(), [&] {
      sm.applicantSm()->applicantEventIs( event );
      sm.applicantSm()->handleApplicantEvent();
   } );
}

// Posts the event, and then keeps the value sent as the attribute's.
void declare( MrpSm & sm, MrpApplicantEvent event ) {
   post( sm, event );
   if ( MrpAttrDatabase * const attribute = sm.mrpGetAttribute( false ) ) {
      sm.mrpPopulateValueInDatabase( *attribute, true );
   }
}

} // namespace

void MrpLib::mrpSendAttribute( MrpParameters const & attribute ) {
   MrpParseContext & context = *mrpSm_->parseContext();
   Pelk::IntfId const savedIntfId = context.intfId();
   U8 const savedType = context.attributeType();
   U64 const savedKey = context.attributeKey();
   Korv::Seconds const leaveAllTime = getLeaveAllTime( *mrpSm_, savedIntfId );
   trace( 8, "sendAttribute called" );

   // The machine found for a queue entry stays current for later ones that have none.
   Korv::Ptr< MrpIntfLeaveAllSm > leaveAllMachine;
   while ( !mrpOutIntfQueue_.empty() ) {
      Pelk::IntfId const queued = mrpOutIntfQueueDeq();
      context.intfIdIs( attribute.intfId() );
      context.attributeTypeIs( attribute.attributeType() );
      context.attributeKeyIs( mrpSm_->mrpGetTxAttributeKey() );

      switch ( attribute.attributeEvent() ) {
      case newEvent: declare( *mrpSm_, appNew ); break;
      case joinInEvent:
      case joinMtEvent: declare( *mrpSm_, appJoin ); break;
      case lvEvent:
         post( *mrpSm_, appLv );
         // There, unless somebody who was told of a frame that left has ended it.
         if ( mrpSm_->mrpGetAttribute( false ) ) {
            mrpDeleteAttrOnDefaultStates();
         }
         break;
      case lvAllEvent:
         trace( 7, "mrpSendAttribute: lvAllEvent_. intfId = ", queued,
                "attrType = ", static_cast< char >( attribute.attributeType() ) );
         mrpSendAttributeIntf( attribute, queued, false );
         // The type is the one that the context held on entry, not the one of the parameters.
         mrpSm_->leaveAllSm()->publish( queued, savedType, leaveAllTime );
         if ( auto * const found = mrpSm_->leaveAllSm()->intfLeaveAllSm( queued ) ) {
            leaveAllMachine = found;
         }
         if ( leaveAllMachine ) {
            leaveAllMachine->doPushLeaveAll( savedType, leaveAllTime );
         }
         break;
      case lvInternal: mrpHandleInternalLeave(); break;
      default:
         trace( 4, "Event = ", static_cast< char >( attribute.attributeEvent() ),
                " not handled in sendAttributeIntf " );
         break;
      }
   }
   context.intfIdIs( savedIntfId );
   context.attributeTypeIs( savedType );
   context.attributeKeyIs( savedKey );
}

namespace {

U64 txKey( MrpLib const & lib, MrpApplication application, U8 attributeType ) {
   U64 key = 0;
   withAttributeKind( application, attributeType, [&]( auto kind ) {
      using Kind = decltype( kind );
      key = Kind::key( ( lib.*Kind::tx )() );
   } );
   return key;
}

} // namespace

U64 MrpSm::mrpGetTxAttributeKey() const {
   switch ( mrpLib_->application() ) {
   case MSRP: return msrpGetTxAttributeKey();
   case MVRP: return mvrpGetTxAttributeKey();
   default: return 0;
   }
}
U64 MrpSm::msrpGetTxAttributeKey() const {
   return txKey( *mrpLib_, MSRP, parseContext_->attributeType() );
}
U64 MrpSm::mvrpGetTxAttributeKey() const {
   return txKey( *mrpLib_, MVRP, parseContext_->attributeType() );
}

} // namespace Mrp
