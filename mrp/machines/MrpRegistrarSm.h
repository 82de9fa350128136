// Whether an attribute is registered (IEEE 802.1Q, the Registrar of MAD).
//
// One for the whole participant, owned by MrpSm. The state of each attribute stands in its
// MrpAttrDatabase; the machine works on the attribute that the parse context names. It raises the
// indications, and it removes an attribute that stands in its default states after an event.
//
// It also owns the leave machines and the participant's transmit timer.
#pragma once

#include "mrp/machines/MrpLeaveSm.h"
#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"
#include "mrp/topology/MrpConfig.h"
#include "mrp/vocabulary/Mrp.h"

#include <array>

namespace Mrp {

enum class RegistrarStep : U8;
class MrpAttrDatabase;
class MrpSm;

class MrpRegistrarSm : public Korv::PtrInterface {
 public:
   using LeaveSms = Korv::HashMap< MrpAttribute, Korv::Ptr< MrpLeaveSm > >;

   // Runs a first transmit pass and arms the transmit timer.
   MrpRegistrarSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig,
                   Korv::Ptr< Dovr::TimerWheel > timerWheel );
   ~MrpRegistrarSm() override;

   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< MrpConfig const > const & mrpConfig() const { return mrpConfig_; }
   Korv::Ptr< Dovr::TimerWheel > const & timerWheel() const { return timerWheel_; }
   Dovr::TimerWheel::Reactor const & txTimer() const { return txTimer_; }
   void handleInitialized();
   bool initialized() const { return initialized_; }

   // To post an event: name the attribute in the parse context, store the event, call the handler.
   MrpRegistrarEvent registrarEvent() const { return registrarEvent_; }
   void registrarEventIs( MrpRegistrarEvent v ) { registrarEvent_ = v; }
   // Never makes an attribute: the applicant's event, posted first, does.
   void handleRegistrarEvent();

   // One handler a state, all over the one table; true if the application refused a join.
   bool handleInStateRegistrar( MrpRegistrarEvent event );
   bool handleMtStateRegistrar( MrpRegistrarEvent event );
   bool handleLvStateRegistrar( MrpRegistrarEvent event );

   void mrpSetRegistrarState( MrpRegistrarState state );
   // The event of a MrpThreePackedEvent number from the wire.
   MrpRegistrarEvent mrpMapRxRegistrarEvent( U8 rxEvent ) const {
      static constexpr std::array< MrpRegistrarEvent, 6 > events{
         regNew, regJoinIn, invalidRegistrarEvent, regJoinMt, invalidRegistrarEvent, regLv };
      return rxEvent < events.size() ? events[rxEvent] : invalidRegistrarEvent;
   }

   // ---- machines/LeavePending.cpp -------------------------------------------------------------
   // Both on the attribute that the parse context names.
   void mrpAddAttrToLeavePending();
   void mrpDeleteAttrFromLeavePending();
   void mrpCancelLeavePending( Pelk::IntfId intfId );

   // Shared timers, by interface and type (key 0), and timers of one attribute each.
   LeaveSms const & leaveSm() const { return leaveSm_; }
   MrpLeaveSm * leaveSm( MrpAttribute const & key ) const {
      return Korv::memberAt( leaveSm_, key );
   }
   MrpLeaveSm * leaveSmIs( MrpAttribute const & key ) { return findOrMake( leaveSm_, key ); }
   MrpLeaveSm * newLeaveSm( MrpAttribute const & key ) { return leaveSmIs( key ); }
   void leaveSmDel( MrpAttribute const & key ) { leaveSm_.erase( key ); }
   void leaveSmDelAll() { Korv::membersDelAll( leaveSm_ ); }
   LeaveSms const & explicitLeaveSm() const { return explicitLeaveSm_; }
   MrpLeaveSm * explicitLeaveSm( MrpAttribute const & key ) const {
      return Korv::memberAt( explicitLeaveSm_, key );
   }
   MrpLeaveSm * explicitLeaveSmIs( MrpAttribute const & key ) {
      return findOrMake( explicitLeaveSm_, key );
   }
   MrpLeaveSm * newExplicitLeaveSm( MrpAttribute const & key ) { return explicitLeaveSmIs( key ); }
   void explicitLeaveSmDel( MrpAttribute const & key ) { explicitLeaveSm_.erase( key ); }
   void explicitLeaveSmDelAll() { Korv::membersDelAll( explicitLeaveSm_ ); }

   // The participant's periodic transmit opportunity, each 0.1 seconds in any configuration.
   void handleTxTimer();
   // Traces; timersEnabled switches nothing.
   void handleCfgTimersEnabled();

 private:
   class KorvTxTimer : public Dovr::TimerWheel::Reactor {
    public:
      KorvTxTimer( Korv::Ptr< Dovr::TimerWheel > wheel, MrpRegistrarSm & sm )
         : Reactor( std::move( wheel ) ), sm_( sm ) {}
      void onTime() override { sm_.handleTxTimer(); }

    private:
      MrpRegistrarSm & sm_;
   };
   class KorvMrpConfig : public MrpConfig::Reactor {
    public:
      explicit KorvMrpConfig( MrpRegistrarSm & sm ) : sm_( sm ) {}
      void onTimersEnabled() override { sm_.handleCfgTimersEnabled(); }

    private:
      MrpRegistrarSm & sm_;
   };

   // A cell of the table: RegistrarTable.h.
   template < RegistrarStep... steps >
   friend bool runSteps( MrpRegistrarSm & sm, MrpRegistrarState state, MrpRegistrarEvent event );
   template < RegistrarStep step >
   void doStep( MrpRegistrarState state, MrpRegistrarEvent event, bool & discarded );
   bool transition( MrpRegistrarState state, MrpRegistrarEvent event );
   bool checkJoin();
   MrpParameters indication() const;
   // Out of line and out of the way of what is done for every refresh.
   [[gnu::noinline]] void logJoin( MrpRegistrarState state, MrpRegistrarEvent event ) const;
   [[gnu::noinline]] void logLeave( char const * what, MrpRegistrarState state,
                                    MrpRegistrarEvent event ) const;
   [[gnu::noinline]] void handleDiscardedJoin();
   MrpLeaveSm * findOrMake( LeaveSms & machines, MrpAttribute const & key );

   MrpSm * mrpSm_; // the owner
   Korv::Ptr< MrpConfig const > mrpConfig_;
   Korv::Ptr< Dovr::TimerWheel > timerWheel_;
   KorvTxTimer txTimer_;
   MrpRegistrarEvent registrarEvent_ = invalidRegistrarEvent;
   LeaveSms leaveSm_;
   LeaveSms explicitLeaveSm_;
   bool initialized_ = false;
   KorvMrpConfig korvMrpConfig_{ *this };
};

} // namespace Mrp
