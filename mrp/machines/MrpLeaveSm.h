// One leave timer and the attributes that wait on it.
//
// Owned by MrpRegistrarSm: in `explicitLeaveSm` the key names the one attribute that waits; in
// `leaveSm` its attributeVal is 0 and all attributes of an interface and type wait together, so
// that a LeaveAll over thousands of attributes costs one timer. Lives from the first attribute
// that waits to the firing of the timer, in which it removes itself.
//
//  1. An entry of leavePending is true; an attribute that waits no more has none.
//  2. The timer runs for as long as the machine lives, also when nothing waits any more.
#pragma once

#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/vocabulary/MrpKeys.h"

namespace Mrp {

class MrpSm;

class MrpLeaveSm : public Korv::PtrInterface {
 public:
   using LeavePending = Korv::OrderedMap< U64, bool >;

   MrpLeaveSm( MrpAttribute const & key, MrpSm * mrpSm, Korv::Ptr< Dovr::TimerWheel > timerWheel );

   MrpAttribute const & key() const { return key_; }
   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< Dovr::TimerWheel > const & timerWheel() const { return leaveTimer_.wheel(); }
   Dovr::TimerWheel::Reactor const & leaveTimer() const { return leaveTimer_; }
   void handleInitialized();
   bool initialized() const { return initialized_; }

   // By ascending attribute key.
   LeavePending const & leavePending() const { return leavePending_; }
   bool leavePending( U64 attributeKey ) const {
      bool const * const found = leavePending_.find( attributeKey );
      return found && *found;
   }
   // True if the attribute did not wait before.
   bool leavePendingIs( U64 attributeKey, bool v ) {
      return leavePending_.insertOrAssign( attributeKey, v );
   }
   bool newLeavePending( U64 attributeKey, bool v ) { return leavePendingIs( attributeKey, v ); }
   void leavePendingDel( U64 attributeKey ) { leavePending_.erase( attributeKey ); }
   void leavePendingDelAll() { leavePending_.clear(); }

   // Called by the registrar. A duration from now; it may postpone as well as advance.
   void doScheduleLeaveTimer( Korv::Seconds expiryTime );

   // The timer has fired: receives what has arrived, expires what still waits, and ends the
   // machine.
   void handleLeaveTimer();
   void handleLeavePending( U64 attributeKey );

 private:
   class KorvLeaveTimer : public Dovr::TimerWheel::Reactor {
    public:
      KorvLeaveTimer( Korv::Ptr< Dovr::TimerWheel > wheel, MrpLeaveSm & sm )
         : Reactor( std::move( wheel ) ), sm_( sm ) {}
      void onTime() override { sm_.handleLeaveTimer(); }

    private:
      MrpLeaveSm & sm_;
   };

   void doReceiveWaitingFrame();

   MrpAttribute key_;
   MrpSm * mrpSm_; // the owner's owner
   KorvLeaveTimer leaveTimer_;
   LeavePending leavePending_;
   bool initialized_ = false;
};

} // namespace Mrp
