// LeaveAll for the whole participant: one machine per interface, made on demand.
//
// Owned by MrpSm. A participant sends a LeaveAll for each attribute type on each interface at a
// randomised period, and puts its own off when it receives one.
#pragma once

#include "mrp/machines/MrpIntfLeaveAllSm.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"
#include "mrp/topology/MrpConfig.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

class MrpLeaveAllSm : public Korv::PtrInterface {
 public:
   using IntfLeaveAllSms = Korv::HashMap< Pelk::IntfId, Korv::Ptr< MrpIntfLeaveAllSm > >;

   MrpLeaveAllSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig,
                  Korv::Ptr< Dovr::TimerWheel > timerWheel );

   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< MrpConfig const > const & mrpConfig() const { return mrpConfig_; }
   Korv::Ptr< Dovr::TimerWheel > const & timerWheel() const { return timerWheel_; }
   void handleInitialized();
   bool initialized() const { return initialized_; }
   IntfLeaveAllSms const & intfLeaveAllSm() const { return intfLeaveAllSm_; }
   MrpIntfLeaveAllSm * intfLeaveAllSm( Pelk::IntfId intfId ) const;
   MrpIntfLeaveAllSm * intfLeaveAllSmIs( Pelk::IntfId intfId );
   MrpIntfLeaveAllSm * newIntfLeaveAllSm( Pelk::IntfId intfId ) {
      return intfLeaveAllSmIs( intfId );
   }
   void intfLeaveAllSmDel( Pelk::IntfId intfId ) { intfLeaveAllSm_.erase( intfId ); }
   void intfLeaveAllSmDelAll() { Korv::membersDelAll( intfLeaveAllSm_ ); }

   // Posts the pair to every attribute of the type, those marked for deletion left out. Not for a
   // received LeaveAll, which MrpSm::mrpProcessRxLeaveAll applies.
   void mrpPostLeaveAllToSm( Pelk::IntfId intfId, U8 attributeType,
                             MrpApplicantEvent applicantEvent, MrpRegistrarEvent registrarEvent );

   // LeaveAll on the interface, for all types of the application, begins and ends.
   void mrpEnableLeaveAllPending( Pelk::IntfId intfId );
   void mrpEnableLeaveAllPendingAttrType( Pelk::IntfId intfId, U8 attributeType,
                                          Korv::Seconds leaveAllTime );
   void mrpDisableLeaveAllPending( Pelk::IntfId intfId );
   void mrpDisableLeaveAllPendingAttrType( Pelk::IntfId intfId, U8 attributeType );

   // The type's LeaveAll is due a time from now, if it is under LeaveAll there; false if not. The
   // caller publishes.
   bool doPushLeaveAll( Pelk::IntfId intfId, U8 attributeType, Korv::Seconds leaveAllTime );
   // Shows the period in the status tree.
   void publish( Pelk::IntfId intfId, U8 attributeType, Korv::Seconds leaveAllTime ) const;

   void handleCfgTimersEnabled();
   void handleCfgLeaveAllTime();
   void handleCfgIntfLeaveAllTime( Pelk::IntfId intfId );

 private:
   class KorvMrpConfig : public MrpConfig::Reactor {
    public:
      explicit KorvMrpConfig( MrpLeaveAllSm & sm ) : sm_( sm ) {}
      void onTimersEnabled() override { sm_.handleCfgTimersEnabled(); }
      void onLeaveAllTime() override { sm_.handleCfgLeaveAllTime(); }
      void onIntfLeaveAllTime( Pelk::IntfId intfId ) override {
         sm_.handleCfgIntfLeaveAllTime( intfId );
      }

    private:
      MrpLeaveAllSm & sm_;
   };

   MrpSm * mrpSm_; // the owner
   Korv::Ptr< MrpConfig const > mrpConfig_;
   Korv::Ptr< Dovr::TimerWheel > timerWheel_;
   IntfLeaveAllSms intfLeaveAllSm_;
   bool initialized_ = false;
   KorvMrpConfig korvMrpConfig_{ *this };
};

} // namespace Mrp
