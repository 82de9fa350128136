#include "mrp/machines/MrpRegistrarSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/machines/RegistrarTable.h"
#include "mrp/observability/Logs.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/Format.h"

namespace Mrp {

namespace {
constexpr Korv::Seconds txPeriod = 0.1;
}

MrpRegistrarSm::MrpRegistrarSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig,
                                Korv::Ptr< Dovr::TimerWheel > timerWheel )
   : mrpSm_( mrpSm ), mrpConfig_( std::move( mrpConfig ) ), timerWheel_( std::move( timerWheel ) ),
     txTimer_( timerWheel_, *this ) {
   korvMrpConfig_.notifierIs( mrpConfig_ );
   handleInitialized();
}

MrpRegistrarSm::~MrpRegistrarSm() = default;

void MrpRegistrarSm::handleInitialized() {
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   handleTxTimer();
}

void MrpRegistrarSm::handleTxTimer() {
   mrpSm_->mrpTransmitTxAttributes();
   txTimer_.timeMinIs( Korv::now() + txPeriod );
}

void MrpRegistrarSm::handleCfgTimersEnabled() {
   trace( 8, "void Mrp::MrpRegistrarSm::handleCfgTimersEnabled()" );
}

[[gnu::flatten]] void MrpRegistrarSm::handleRegistrarEvent() {
   // Held: an indication may end the attribute.
   Korv::Ptr< MrpAttrDatabase > const attribute = mrpSm_->mrpGetAttribute( false );
   if ( !attribute ) {
      trace( 8, " attribute not found, returning@!!! " );
      return;
   }
   MrpRegistrarState const state = attribute->registrarState();
   MrpParseContext const & context = *mrpSm_->parseContext();
   trace( 8, "void Mrp::MrpRegistrarSm::handleRegistrarEvent()", " Key = 0x",
          Korv::Hex{ context.attributeKey() }, " Type= ", context.attributeType(),
          " intf = ", context.intfId() );
   trace( 8, " Enter: state = ", state, " event = ", registrarEvent_ );
   if ( registrarEvent_ == regLv ) {
      logLeave( "received", state, regLv );
   }
   bool const discarded = transition( state, registrarEvent_ );
   trace( 8, " Exit: state = ", attribute->registrarState() );
   if ( discarded ) {
      handleDiscardedJoin();
   }
   // After every event, one that did nothing included: else attributes that the applicant made
   // for an In or an Mt would stay for ever.
   if ( attribute->inDefaultStates() ) {
      mrpDeleteAttrFromLeavePending();
      mrpSm_->mrpDeleteAttrFromDatabase();
   }
}

// The one place where a transition is applied. True if the application refused a join.
bool MrpRegistrarSm::transition( MrpRegistrarState state, MrpRegistrarEvent event ) {
   if ( state > mrpMt ) {
      trace( 4, "Invalid registrar State = ", state );
      return false;
   }
   if ( event >= invalidRegistrarEvent ) {
      return false;
   }
   RegistrarAction const action = RegistrarCells::table[event].actions[state];
   return action && action( *this, state, event );
}

template < RegistrarStep... steps >
bool runSteps( MrpRegistrarSm & sm, MrpRegistrarState state, MrpRegistrarEvent event ) {
   bool discarded = false;
   ( sm.doStep< steps >( state, event, discarded ), ... );
   return discarded;
}

template < RegistrarStep step >
inline void MrpRegistrarSm::doStep( MrpRegistrarState state, MrpRegistrarEvent event,
                                    bool & discarded ) {
   using S = RegistrarStep;
   if constexpr ( step == S::logJoin ) {
      logJoin( state, event );
   } else if constexpr ( step == S::logLeave ) {
      logLeave( "notified", state, event );
   } else if constexpr ( step == S::toIn ) {
      mrpSetRegistrarState( mrpIn );
   } else if constexpr ( step == S::toLv ) {
      mrpSetRegistrarState( mrpLv );
   } else if constexpr ( step == S::toMt ) {
      mrpSetRegistrarState( mrpMt );
   } else if constexpr ( step == S::pend ) {
      mrpAddAttrToLeavePending();
   } else if constexpr ( step == S::unpend ) {
      mrpDeleteAttrFromLeavePending();
   } else if constexpr ( step == S::traceJoinBlank ) {
      trace( 8, "Join Indication called " );
   } else if constexpr ( step == S::traceJoin ) {
      trace( 8, "Join Indication called" );
   } else if constexpr ( step == S::traceJoinInLv ) {
      trace( 8, "JoinIndication called" );
   } else if constexpr ( step == S::traceLeave ) {
      trace( 8, "LeaveIndication called" );
   } else if constexpr ( step == S::indicateJoin ) {
      discarded = mrpSm_->mrpLib()->mrpJoinIndication( indication() );
   } else if constexpr ( step == S::checkJoin ) {
      discarded = checkJoin();
   } else if constexpr ( step == S::indicateLeave ) {
      mrpSm_->mrpLib()->mrpLeaveIndication( indication() );
   } else if constexpr ( step == S::countJoin ) {
      mrpSm_->mrpCounters()->numOfJoinIndicationsInc( 1 );
   } else {
      static_assert( step == S::countLeave );
      mrpSm_->mrpCounters()->numOfLeaveIndicationsInc( 1 );
   }
}

// A join of an attribute that was registered already: indicated only if its value has changed. A
// domain's counts as changed every time, and its stored value is never rewritten here.
bool MrpRegistrarSm::checkJoin() {
   bool const isDomain = mrpSm_->mrpLib()->application() == MSRP &&
                         mrpSm_->parseContext()->attributeType() == domainVector;
   if ( !isDomain ) {
      if ( mrpSm_->mrpRxVectorSameAsDatabaseAttr() ) {
         return false;
      }
      if ( MrpAttrDatabase * const attribute = mrpSm_->mrpGetAttribute( false ) ) {
         mrpSm_->mrpPopulateValueInDatabase( *attribute, false );
      }
   }
   return mrpSm_->mrpLib()->mrpJoinIndication( indication() );
}

// The event is the wire's and not the registrar's; newEvent is never set, an application tells a
// new declaration by attributeEvent.
MrpParameters MrpRegistrarSm::indication() const {
   MrpParseContext const & context = *mrpSm_->parseContext();
   return MrpParameters( context.intfId(), context.attributeType(), context.attributeEvent() );
}

void MrpRegistrarSm::logJoin( MrpRegistrarState state, MrpRegistrarEvent event ) const {
   if ( MRP_JOIN.okToLog() ) {
      MrpParseContext const & context = *mrpSm_->parseContext();
      mrpLog( MRP_JOIN, context.intfId().stringValue(), std::to_string( context.attributeType() ),
              hexStr( context.attributeKey() ), stringValue( state ), stringValue( event ) );
   }
}

void MrpRegistrarSm::logLeave( char const * what, MrpRegistrarState state,
                               MrpRegistrarEvent event ) const {
   if ( MRP_LV.okToLog() ) {
      MrpParseContext const & context = *mrpSm_->parseContext();
      mrpLog( MRP_LV, std::string( what ), context.intfId().stringValue(),
              std::to_string( context.attributeType() ), hexStr( context.attributeKey() ),
              stringValue( state ), stringValue( event ) );
   }
}

void MrpRegistrarSm::handleDiscardedJoin() {
   MrpParseContext const & context = *mrpSm_->parseContext();
   U8 const type = context.attributeType();
   U8 const event = context.attributeEvent();
   trace( 4, "Join was discarded by MSRP, interface: ", context.intfId(), ", attrType: ", type,
          ", attrEvent: ", event );
   Sornlog::log( Ring::joinDiscarded, context.intfId(), type, event );
   if ( MRP_ERROR.okToLog() ) {
      // The two numbers stand in the reverse of what their labels say: consumers of this text know
      // it so.
      MRP_ERROR.log(
         Korv::format( "Join was discarded by MSRP, interface: %s, attrType: %d, attrEvent: %d",
                       context.intfId().stringValue().c_str(), event, type ) );
   }
   mrpSetRegistrarState( mrpMt );
}

bool MrpRegistrarSm::handleInStateRegistrar( MrpRegistrarEvent event ) {
   return transition( mrpIn, event );
}
bool MrpRegistrarSm::handleMtStateRegistrar( MrpRegistrarEvent event ) {
   return transition( mrpMt, event );
}
bool MrpRegistrarSm::handleLvStateRegistrar( MrpRegistrarEvent event ) {
   return transition( mrpLv, event );
}

void MrpRegistrarSm::mrpSetRegistrarState( MrpRegistrarState state ) {
   if ( MrpAttrDatabase * const attribute = mrpSm_->mrpGetAttribute( false ) ) {
      attribute->registrarStateIs( state );
   }
}

} // namespace Mrp
