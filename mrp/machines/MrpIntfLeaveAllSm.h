// The LeaveAll of one interface: one record per attribute type and one wake-up timer.
//
// Owned by MrpLeaveAllSm, from the first type under LeaveAll to the last one's going. The
// `timestamp` of a record is the truth about when its type is due; the timer is only a means of
// waking up. So a LeaveAll is pushed back by writing the record: the timer is left running, finds
// nothing due, and is set anew from the records.
#pragma once

#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/vocabulary/Foundation.h"

namespace Mrp {

class MrpSm;

class MrpLeaveAllTimer : public Korv::PtrInterface {
 public:
   explicit MrpLeaveAllTimer( U8 attrType ) : attrType_( attrType ) {}

   U8 attrType() const { return attrType_; }
   U32 hash() const { return Korv::hashOf( attrType_ ); }
   // When the type's LeaveAll is due, an absolute time.
   Korv::Seconds timestamp() const { return timestamp_; }
   void timestampIs( Korv::Seconds v ) { timestamp_ = v; }

 private:
   U8 attrType_;
   Korv::Seconds timestamp_ = 0;
};

class MrpIntfLeaveAllSm : public Korv::PtrInterface {
 public:
   using LeaveAllPending = Korv::OrderedMap< U8, Korv::Ptr< MrpLeaveAllTimer > >;

   MrpIntfLeaveAllSm( Pelk::IntfId intfId, MrpSm * mrpSm,
                      Korv::Ptr< Dovr::TimerWheel > timerWheel );

   Pelk::IntfId intfId() const { return intfId_; }
   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< Dovr::TimerWheel > const & timerWheel() const { return leaveAllTimer_.wheel(); }
   Dovr::TimerWheel::Reactor const & leaveAllTimer() const { return leaveAllTimer_; }
   void handleInitialized();
   bool initialized() const { return initialized_; }

   // The types under LeaveAll, by ascending type.
   LeaveAllPending const & leaveAllPending() const { return leaveAllPending_; }
   MrpLeaveAllTimer * leaveAllPending( U8 attrType ) const;
   MrpLeaveAllTimer * leaveAllPendingIs( U8 attrType );
   MrpLeaveAllTimer * newLeaveAllPending( U8 attrType ) { return leaveAllPendingIs( attrType ); }
   void leaveAllPendingDel( U8 attrType ) { leaveAllPending_.erase( attrType ); }
   void leaveAllPendingDelAll() { leaveAllPending_.clear(); }

   // The type is due a time from now, if it is under LeaveAll; false if not.
   bool doPushLeaveAll( U8 attrType, Korv::Seconds leaveAllTime );
   // A duration from now; the wake-up moves earlier by it and never later.
   void doScheduleLeaveAllTimer( Korv::Seconds expiryTime );
   void handleLeaveAllTimer();
   // Sends the type's LeaveAll, unless it is due more than 0.1 seconds from now.
   void handleTxLeaveAll( U8 attrType, Korv::Seconds leaveAllTime );
   // Restarts the period of all types.
   void handleCfgIntfLeaveAllTime();

 private:
   class KorvLeaveAllTimer : public Dovr::TimerWheel::Reactor {
    public:
      KorvLeaveAllTimer( Korv::Ptr< Dovr::TimerWheel > wheel, MrpIntfLeaveAllSm & sm )
         : Reactor( std::move( wheel ) ), sm_( sm ) {}
      void onTime() override { sm_.handleLeaveAllTimer(); }

    private:
      MrpIntfLeaveAllSm & sm_;
   };

   // The type is due a time from now: writes the record and publishes the time.
   void doRestart( MrpLeaveAllTimer & type, Korv::Seconds leaveAllTime );

   Pelk::IntfId intfId_;
   MrpSm * mrpSm_; // the owner's owner
   KorvLeaveAllTimer leaveAllTimer_;
   LeaveAllPending leaveAllPending_;
   bool initialized_ = false;
};

} // namespace Mrp
