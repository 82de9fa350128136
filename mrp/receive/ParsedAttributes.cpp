// A frame as a whole to the machines.
//
// Nothing reaches a machine while a frame is walked. Then, in this order: all LeaveAll by
// ascending type, a transmit pass, the MSRP domains, all other attributes in the order of the
// frame. So a LeaveAll can take into account what the same frame says of each attribute, and a
// frame's domains are in force when its talkers and listeners reach the application.
#include "mrp/database/ContextAttribute.h"
#include "mrp/machines/ApplicantTable.h"
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
   Korv::Seconds const expiry = Korv::now() + leaveAllTime;
   for ( auto type = mrpRxLeaveAll_.walk(); type; ++type ) {
      U8 const attributeType = type.key();
      mrpProcessRxLeaveAll( intfId, attributeType );
      // Somebody else has sent the LeaveAll: our own is put off.
      if ( leaveAllSm_->doPushLeaveAll( intfId, attributeType, leaveAllTime ) ) {
         trace( 8, " txLeaveAll repunched now = ", Korv::now(), " at = ", expiry,
                " for type = ", attributeType, " on intf = ", intfId );
         leaveAllSm_->publish( intfId, attributeType, leaveAllTime );
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
   withAttributeKindOrNone( mrpLib_->application(), key.attributeType(), [&]( auto kind ) {
      processRecord< decltype( kind ) >( *record, intfId );
   } );
}

template < class Kind >
void MrpSm::processRecord( MrpParsedAttribute const & record, Pelk::IntfId intfId ) {
   if constexpr ( std::is_same_v< Kind, NoKind > ) {
      fillMrpLibFromSavedValue( intfId, record );
   } else {
      fillFromSavedValue< Kind >( intfId, record );
   }
   U8 const event = record.attributeEvent();
   parseContext_->intfIdIs( intfId );
   parseContext_->attributeTypeIs( record.key().attributeType() );
   parseContext_->attributeKeyIs( record.key().attributeKey() );
   parseContext_->attributeEventIs( event );

   // The applicant first: it makes a missing attribute, which the registrar then finds.
   applicantSm_->applicantEventIs( applicantSm_->mrpMapRxApplicantEvent( event ) );
   if ( isRefresh< Kind >( event ) ) {
      registrarSm_->registrarEventIs( registrarSm_->mrpMapRxRegistrarEvent( event ) );
      mrpCounters_->numOfJoinIndicationsInc( 1 );
      return;
   }
   applicantSm_->handleApplicantEvent();
   registrarSm_->registrarEventIs( registrarSm_->mrpMapRxRegistrarEvent( event ) );
   registrarSm_->handleRegistrarEvent();
}

// What nearly all attributes of nearly all frames do: they are registered with this value already,
// and there is nothing to say to them. All that the machines would then do is count a join, and it
// would take them most of a frame's time. A domain is indicated every time.
template < class Kind >
bool MrpSm::isRefresh( U8 event ) const {
   if constexpr ( std::is_same_v< Kind, NoKind > || std::is_same_v< Kind, DomainKind > ) {
      return false;
   } else {
      if ( ( event != joinInEvent && event != joinMtEvent ) || !nothingIsPending() ||
           traceIsOn( 8 ) ) {
         return false;
      }
      MrpAttrDatabase const * const attribute = contextAttributeInTree();
      return attribute && attribute->registrarState() == mrpIn &&
             ApplicantCells::isQuiet( attribute->applicantState(),
                                      applicantSm_->applicantEvent() ) &&
             rxSameAs< Kind >( *attribute );
   }
}

// The received value becomes the value to send.
template < class Kind >
void MrpSm::fillFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   if constexpr ( std::is_same_v< Kind, NoKind > ) {
      trace( 8, " valueSize = 0!! " );
   } else {
      typename Kind::Value value;
      attribute.attributeValue().copyOut( &value, sizeof value );
      ( mrpLib_->*Kind::rxIs )( value );
      ( mrpLib_->*Kind::txIs )( value );
   }
   // But a domain is answered with what this participant already holds for the class.
   if constexpr ( std::is_same_v< Kind, DomainKind > ) {
      MrpAttrDatabase const * const stored =
         mrpGetAttrFromDatabase( intfId, domainVector, attribute.key().attributeKey(), true );
      if ( stored ) {
         MsrpDomainAttribute value;
         stored->attributeValue().copyOut( &value, sizeof value );
         mrpLib_->msrpDomainVectorTxIs( value );
      }
   }
}

// The public forms find the kind afresh.
void MrpSm::fillMrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   switch ( mrpLib_->application() ) {
   case MSRP: fillMsrpLibFromSavedValue( intfId, attribute ); break;
   case MVRP: fillMvrpLibFromSavedValue( intfId, attribute ); break;
   default: break;
   }
}
void MrpSm::fillMsrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   withAttributeKindOrNone( MSRP, attribute.key().attributeType(), [&]( auto kind ) {
      fillFromSavedValue< decltype( kind ) >( intfId, attribute );
   } );
}
void MrpSm::fillMvrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute ) {
   withAttributeKindOrNone( MVRP, attribute.key().attributeType(), [&]( auto kind ) {
      fillFromSavedValue< decltype( kind ) >( intfId, attribute );
   } );
}

namespace {

// How the frame itself declares the attribute: what the answer to its LeaveAll is to report.
MrpRegistrarState declaredState( MrpSm const & sm, MrpParsedAttributeKey const & key ) {
   MrpParsedAttribute const * const record = sm.mrpParsedAttribute( key );
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
