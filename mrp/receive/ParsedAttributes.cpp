// A frame as a whole to the machines.
//
// Nothing reaches a machine while a frame is walked. Then, in this order: all LeaveAll by
// ascending type, a transmit pass, the MSRP domains, all other attributes in the order of the
// frame. So a LeaveAll can take into account what the same frame says of each attribute, and a
// frame's domains are in force when its talkers and listeners reach the application.
#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/Trace.h"

namespace Mrp {

// Flattened, as the decoder's and the machines' doors are: a refresh of thousands of attributes
// runs through here, and its calls would cost more than its work.
[[gnu::flatten]] void MrpSm::processParsedAttributes( Pelk::IntfId intfId ) {
   trace( 8, "MrpSm::processedParsedAttributes( ", intfId, " )" );
   // One draw for the whole frame.
   Korv::Seconds const leaveAllTime = getLeaveAllTime( *this, intfId );
   for ( auto type = mrpRxLeaveAll_.walk(); type; ++type ) {
      U8 const attributeType = type.key();
      mrpProcessRxLeaveAll( intfId, attributeType );
      // Somebody else has sent the LeaveAll: our own is put off.
      if ( leaveAllSm_->doPushLeaveAll( intfId, attributeType, leaveAllTime ) ) {
         trace( 8, " txLeaveAll repunched now = ", Korv::now(),
                " at = ", Korv::now() + leaveAllTime, " for type = ", attributeType,
                " on intf = ", intfId );
      }
      mrpRxLeaveAllDel( attributeType );
   }
   mrpTransmitTxAttributes( intfId );

   if ( mrpLib_->application() == MSRP ) {
      while ( !msrpParsedDomainKey_.empty() ) {
         processParsedAttribute( msrpParsedDomainKey_.front(), intfId );
         msrpParsedDomainKeyDeq();
      }
   }
   while ( !mrpParsedAttributeKey_.empty() ) {
      processParsedAttribute( mrpParsedAttributeKey_.front(), intfId );
      mrpParsedAttributeKeyDeq();
   }
   mrpParsedAttributeDelAll();
}

void MrpSm::processParsedAttribute( MrpParsedAttributeKey key, Pelk::IntfId intfId ) {
   MrpParsedAttribute const * const record = mrpParsedAttribute_.find( key );
   if ( !record ) {
      return;
   }
   fillMrpLibFromSavedValue( intfId, *record );
   U8 const event = record->attributeEvent();
   parseContext_->intfIdIs( intfId );
   parseContext_->attributeTypeIs( record->key().attributeType() );
   parseContext_->attributeKeyIs( record->key().attributeKey() );
   parseContext_->attributeEventIs( event );

   // The applicant first: it makes a missing attribute, which the registrar then finds.
   applicantSm_->applicantEventIs( applicantSm_->mrpMapRxApplicantEvent( event ) );
   applicantSm_->handleApplicantEvent();
   registrarSm_->registrarEventIs( registrarSm_->mrpMapRxRegistrarEvent( event ) );
   registrarSm_->handleRegistrarEvent();
}

void MrpSm::fillMrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   switch ( mrpLib_->application() ) {
   case MSRP: fillMsrpLibFromSavedValue( intfId, attribute ); break;
   case MVRP: fillMvrpLibFromSavedValue( intfId, attribute ); break;
   default: break;
   }
}

namespace {

// The received value becomes the value to send.
void fillBoth( MrpLib & lib, MrpApplication application, MrpParsedAttribute const & attribute ) {
   bool const known =
      withAttributeKind( application, attribute.key().attributeType(), [&]( auto kind ) {
         using Kind = decltype( kind );
         typename Kind::Value value;
         attribute.attributeValue().copyOut( &value, sizeof value );
         ( lib.*Kind::rxIs )( value );
         ( lib.*Kind::txIs )( value );
      } );
   if ( !known ) {
      trace( 8, " valueSize = 0!! " );
   }
}

} // namespace

void MrpSm::fillMsrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   fillBoth( *mrpLib_, MSRP, attribute );
   if ( attribute.key().attributeType() != domainVector ) {
      return;
   }
   // A domain is answered with what this participant already holds for the class.
   MrpAttrDatabase const * const stored =
      mrpGetAttrFromDatabase( intfId, domainVector, attribute.key().attributeKey(), true );
   if ( stored ) {
      MsrpDomainAttribute value;
      stored->attributeValue().copyOut( &value, sizeof value );
      mrpLib_->msrpDomainVectorTxIs( value );
   }
}

void MrpSm::fillMvrpLibFromSavedValue( Pelk::IntfId, MrpParsedAttribute const & attribute ) {
   fillBoth( *mrpLib_, MVRP, attribute );
}

namespace {

// How the frame itself declares the attribute: what the answer to its LeaveAll is to report.
MrpRegistrarState declaredState( MrpSm const & sm, MrpParsedAttributeKey const & key ) {
   MrpParsedAttribute const * const record = sm.mrpParsedAttribute().find( key );
   if ( !record ) {
      return mrpMt;
   }
   return sm.registrarSm()->mrpMapRxRegistrarEvent( record->attributeEvent() ) < regLv ? mrpIn
                                                                                       : mrpMt;
}

} // namespace

void MrpSm::mrpProcessRxLeaveAll( Pelk::IntfId intfId, U8 attributeType ) {
   trace( 8, "MrpSm::mrpProcessRxLeaveAll( ", intfId, attributeType, " )" );
   Korv::Ptr< MrpAttrIter > const iter = mrpAttrIter( MrpAttrIter::Key( intfId, attributeType ) );
   if ( !iter ) {
      return;
   }
   for ( auto member = iter->attributeKey().walk(); member; ++member ) {
      U64 const attributeKey = member.key();
      trace( 8, "mrpProcessRxLeaveAll: attributeKey = 0x", Korv::Hex{ attributeKey },
             " Type= ", attributeType, "interface = ", intfId );
      mrpFillContextFromDatabase( MrpAttribute( intfId, attributeType, attributeKey ) );
      Korv::Ptr< MrpAttrDatabase > const attribute = mrpGetAttribute( false );
      if ( !attribute ) {
         removeFromAttrIter( intfId, attributeType, attributeKey );
         continue;
      }
      MrpRegistrarState const registered = attribute->registrarState();
      attribute->registrarStateIs(
         declaredState( *this, MrpParsedAttributeKey( attributeType, attributeKey ) ) );
      applicantSm_->applicantEventIs( rxLvAll );
      applicantSm_->handleApplicantEvent();
      attribute->registrarStateIs( registered );
      registrarSm_->registrarEventIs( regLvAll );
      registrarSm_->handleRegistrarEvent();
   }
}

} // namespace Mrp
