#include "mrp/machines/MrpApplicantSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/machines/ApplicantTable.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

MrpApplicantSm::MrpApplicantSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig )
   : mrpSm_( mrpSm ), mrpConfig_( std::move( mrpConfig ) ) {
   handleInitialized();
}

void MrpApplicantSm::handleInitialized() {
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
}

[[gnu::flatten]] void MrpApplicantSm::handleApplicantEvent() {
   MrpAttrDatabase const * const attribute = mrpSm_->mrpGetAttribute( true );
   if ( !attribute ) {
      trace( 4, " Memory failed for attrDatabase " );
      return;
   }
   MrpApplicantState const state = attribute->applicantState();
   MrpParseContext const & context = *mrpSm_->parseContext();
   trace( 8, "void Mrp::MrpApplicantSm::handleApplicantEvent()", " Key = 0x",
          Korv::Hex{ context.attributeKey() }, " Type= ", context.attributeType(),
          " intf = ", context.intfId() );
   trace( 8, " Enter: state = ", state, " event = ", applicantEvent_ );
   transition( state, applicantEvent_ );
   if ( traceIsOn( 8 ) ) {
      MrpAttrDatabase const * const now = mrpSm_->mrpGetAttribute( false );
      trace( 8, " Exit: handleApplicantEvent, state = ", now ? now->applicantState() : state );
   }
}

// The one place where a transition is applied.
void MrpApplicantSm::transition( MrpApplicantState state, MrpApplicantEvent event ) {
   if ( state > mrpLeavingObserver ) {
      trace( 4, "Invalid applicant State = ", state );
      return;
   }
   if ( event >= invalidApplicantEvent ) {
      return;
   }
   ApplicantCell const & cell = ApplicantCells::table[event].cells[state];
   if ( cell.sends != ApplicantSends::nothing ) {
      doSend( cell.sends );
   }
   if ( cell.moves ) {
      mrpSetApplicantState( cell.next() );
   }
}

[[gnu::noinline]] void MrpApplicantSm::doSend( ApplicantSends sends ) {
   switch ( sends ) {
   case ApplicantSends::nothing: break;
   case ApplicantSends::newBoth:
      mrpApplicantSendNew( false );
      mrpApplicantSendNew( true );
      break;
   case ApplicantSends::newOnce: mrpApplicantSendNew( false ); break;
   case ApplicantSends::joinBoth:
      mrpApplicantSendJoin( false );
      mrpApplicantSendJoin( true );
      break;
   case ApplicantSends::joinOnce: mrpApplicantSendJoin( false ); break;
   case ApplicantSends::registeredOnce: mrpApplicantSendRegisteredState( false ); break;
   case ApplicantSends::registeredThenJoinSecond:
      mrpApplicantSendRegisteredState( false );
      mrpApplicantSendJoin( true );
      break;
   case ApplicantSends::leave: mrpApplicantSendLeave(); break;
   }
}

void MrpApplicantSm::handleVeryAnxiousObserver( MrpApplicantEvent event ) {
   transition( mrpVeryAnxiousObserver, event );
}
void MrpApplicantSm::handleVeryAnxiousPassive( MrpApplicantEvent event ) {
   transition( mrpVeryAnxiousPassive, event );
}
void MrpApplicantSm::handleVeryAnxiousNew( MrpApplicantEvent event ) {
   transition( mrpVeryAnxiousNew, event );
}
void MrpApplicantSm::handleAnxiousNew( MrpApplicantEvent event ) {
   transition( mrpAnxiousNew, event );
}
void MrpApplicantSm::handleAnxiousActive( MrpApplicantEvent event ) {
   transition( mrpAnxiousActive, event );
}
void MrpApplicantSm::handleQuietActive( MrpApplicantEvent event ) {
   transition( mrpQuietActive, event );
}
void MrpApplicantSm::handleLeavingActive( MrpApplicantEvent event ) {
   transition( mrpLeavingActive, event );
}
void MrpApplicantSm::handleAnxiousObserver( MrpApplicantEvent event ) {
   transition( mrpAnxiousObserver, event );
}
void MrpApplicantSm::handleQuietObserver( MrpApplicantEvent event ) {
   transition( mrpQuietObserver, event );
}
void MrpApplicantSm::handleAnxiousPassive( MrpApplicantEvent event ) {
   transition( mrpAnxiousPassive, event );
}
void MrpApplicantSm::handleQuietPassive( MrpApplicantEvent event ) {
   transition( mrpQuietPassive, event );
}
void MrpApplicantSm::handleLeavingObserver( MrpApplicantEvent event ) {
   transition( mrpLeavingObserver, event );
}

void MrpApplicantSm::mrpSetApplicantState( MrpApplicantState state ) {
   if ( MrpAttrDatabase * const attribute = mrpSm_->mrpGetAttribute( false ) ) {
      attribute->applicantStateIs( state );
   }
}

void MrpApplicantSm::mrpApplicantSendNew( bool secondPktContext ) {
   send( newEvent, secondPktContext );
}

void MrpApplicantSm::mrpApplicantSendJoin( bool secondPktContext ) {
   if ( MrpAttrDatabase const * const attribute = mrpSm_->mrpGetAttribute( false ) ) {
      send( attribute->registrarState() == mrpIn ? joinInEvent : joinMtEvent, secondPktContext );
   }
}

void MrpApplicantSm::mrpApplicantSendRegisteredState( bool secondPktContext ) {
   if ( MrpAttrDatabase const * const attribute = mrpSm_->mrpGetAttribute( false ) ) {
      send( attribute->registrarState() == mrpIn ? inEvent : mtEvent, secondPktContext );
   }
}

void MrpApplicantSm::mrpApplicantSendLeave() { send( lvEvent, false ); }

void MrpApplicantSm::send( MrpThreePackedEvent attributeEvent, bool secondPktContext ) {
   MrpParseContext const & context = *mrpSm_->parseContext();
   MrpParameters const parameters( context.intfId(), context.attributeType(),
                                   static_cast< U8 >( attributeEvent ) );
   mrpSm_->mrpLib()->mrpSendAttributeIntf( parameters, parameters.intfId(), secondPktContext );
}

} // namespace Mrp
