// The configuration of a participant: times and two switches.
//
// Its owner makes it by mrpConfigFactory and writes it at any time; the participant reads it at
// the moment of use, or watches it. Nothing in the library writes it, and no bound is applied to
// what it holds: the bounds of MrpTimerConstants are for whoever writes. Times are in seconds.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

class MrpConfig : public Korv::NamedEntity {
 public:
   class Reactor : public Korv::ReactorOn< MrpConfig > {
    public:
      virtual void onTimersEnabled() {}
      virtual void onLeaveTime() {}
      virtual void onLeaveAllTime() {}
      virtual void onIntfLeaveTime( Pelk::IntfId ) {}
      virtual void onIntfLeaveAllTime( Pelk::IntfId ) {}
      virtual void onTxLeaveAllExpiryTime() {}
      virtual void onMrpFlooding() {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   using IntfTimes = Korv::HashMap< Pelk::IntfId, Korv::Seconds >;

   explicit MrpConfig( Korv::Name name ) : NamedEntity( std::move( name ) ) {}

   // Announced, and acted on by nothing: switching it off stops no timer.
   bool timersEnabled() const { return timersEnabled_; }
   void timersEnabledIs( bool v ) { set( timersEnabled_, v, &Reactor::onTimersEnabled ); }

   Korv::Seconds leaveTime() const { return leaveTime_; }
   void leaveTimeIs( Korv::Seconds v ) { set( leaveTime_, v, &Reactor::onLeaveTime ); }

   Korv::Seconds leaveAllTime() const { return leaveAllTime_; }
   void leaveAllTimeIs( Korv::Seconds v ) { set( leaveAllTime_, v, &Reactor::onLeaveAllTime ); }

   // Overrides of the two, per interface; one of 0 counts as none, and none reads as 0.
   IntfTimes const & intfLeaveTime() const { return intfLeaveTime_; }
   Korv::Seconds intfLeaveTime( Pelk::IntfId intfId ) const {
      return valueAt( intfLeaveTime_, intfId );
   }
   void intfLeaveTimeIs( Pelk::IntfId intfId, Korv::Seconds v ) {
      setMember( intfLeaveTime_, intfId, v, &Reactor::onIntfLeaveTime );
   }
   void intfLeaveTimeDel( Pelk::IntfId intfId ) {
      delMember( intfLeaveTime_, intfId, &Reactor::onIntfLeaveTime );
   }
   void intfLeaveTimeDelAll() { delAllMembers( intfLeaveTime_, &Reactor::onIntfLeaveTime ); }

   IntfTimes const & intfLeaveAllTime() const { return intfLeaveAllTime_; }
   Korv::Seconds intfLeaveAllTime( Pelk::IntfId intfId ) const {
      return valueAt( intfLeaveAllTime_, intfId );
   }
   void intfLeaveAllTimeIs( Pelk::IntfId intfId, Korv::Seconds v ) {
      setMember( intfLeaveAllTime_, intfId, v, &Reactor::onIntfLeaveAllTime );
   }
   void intfLeaveAllTimeDel( Pelk::IntfId intfId ) {
      delMember( intfLeaveAllTime_, intfId, &Reactor::onIntfLeaveAllTime );
   }
   void intfLeaveAllTimeDelAll() {
      delAllMembers( intfLeaveAllTime_, &Reactor::onIntfLeaveAllTime );
   }

   // The leave time after a transmitted LeaveAll. Exactly this one means that none has been set,
   // and that the interface's leave time holds.
   static constexpr Korv::Seconds unsetTxLeaveAllExpiryTime = 0.6;
   Korv::Seconds txLeaveAllExpiryTime() const { return txLeaveAllExpiryTime_; }
   void txLeaveAllExpiryTimeIs( Korv::Seconds v ) {
      set( txLeaveAllExpiryTime_, v, &Reactor::onTxLeaveAllExpiryTime );
   }

   // On, the participant floods frames to its other interfaces instead of taking part.
   bool mrpFlooding() const { return mrpFlooding_; }
   void mrpFloodingIs( bool v ) { set( mrpFlooding_, v, &Reactor::onMrpFlooding ); }

   static constexpr auto attributes() {
      using C = MrpConfig;
      return Korv::attributeTable(
         "Mrp::MrpConfig", //
         Korv::scalar( 258, "timersEnabled", &C::timersEnabled, &C::timersEnabledIs ),
         Korv::scalar( 259, "leaveTime", &C::leaveTime, &C::leaveTimeIs ),
         Korv::scalar( 260, "leaveAllTime", &C::leaveAllTime, &C::leaveAllTimeIs ),
         Korv::map( 261, "intfLeaveTime", &C::intfLeaveTime, &C::intfLeaveTimeIs,
                    &C::intfLeaveTimeDel ),
         Korv::map( 262, "intfLeaveAllTime", &C::intfLeaveAllTime, &C::intfLeaveAllTimeIs,
                    &C::intfLeaveAllTimeDel ),
         Korv::scalar( 263, "txLeaveAllExpiryTime", &C::txLeaveAllExpiryTime,
                       &C::txLeaveAllExpiryTimeIs ),
         Korv::scalar( 264, "mrpFlooding", &C::mrpFlooding, &C::mrpFloodingIs ) );
   }

 private:
   bool timersEnabled_ = true;
   Korv::Seconds leaveTime_ = MrpTimerConstants::defaultLeaveTime;
   Korv::Seconds leaveAllTime_ = MrpTimerConstants::defaultLeaveAllTime;
   IntfTimes intfLeaveTime_;
   IntfTimes intfLeaveAllTime_;
   Korv::Seconds txLeaveAllExpiryTime_ = unsetTxLeaveAllExpiryTime;
   bool mrpFlooding_ = false;
};

Korv::Ptr< MrpConfig > mrpConfigFactory( Korv::Name const & name );

} // namespace Mrp
