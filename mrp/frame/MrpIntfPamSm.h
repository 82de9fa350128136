// One interface on which the participant can send and receive: it binds one Pelk::Pam.
//
// Owned by MrpPamSm, from the appearance of the interface's Pam in the collection to its going.
// While the participant is active LeaveAll runs on the interface; in standby frames stay in the
// socket.
//
// The application may close the interface in whatever it is told, and the machine ends there and
// then, in the middle of its own work. So its operations touch nothing of it once they have called
// something that may tell the application. And nobody holds one by a Ptr: the application may close
// the interface and open it anew within one call, and a machine that was held and so closed only
// after its successor had opened would end the LeaveAll of both.
#pragma once

#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/pelk/Pam.h"
#include "mrp/vocabulary/Foundation.h"

namespace Mrp {

class MrpPamSm;
class MrpSm;

class MrpIntfPamSm : public Korv::PtrInterface {
 public:
   MrpIntfPamSm( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam, bool standbyMode,
                 MrpPamSm * mrpPamSm );
   ~MrpIntfPamSm() override;

   Pelk::IntfId intfId() const { return intfId_; }
   MrpPamSm * mrpPamSm() const { return mrpPamSm_; }
   Korv::Ptr< Pelk::Pam > const & pam() const { return pam_; }
   // Moves to another Pam, and reads one frame of it if it is a different one.
   void pamIs( Korv::Ptr< Pelk::Pam > pam );
   // Called by the constructor and by the destructor.
   void handleInitialized();
   void doClose();
   bool initialized() const { return initialized_; }

   // A plain store; the caller then calls handleStandbyMode.
   bool standbyMode() const { return standbyMode_; }
   void standbyModeIs( bool v ) { standbyMode_ = v; }
   void handleStandbyMode();

   // Frames are counted in MrpCounters; nothing moves this one.
   U64 rxMrpdus() const { return rxMrpdus_; }
   void rxMrpdusIs( U64 v ) { rxMrpdus_ = v; }
   void rxMrpdusInc( U64 n ) { rxMrpdus_ += n; }

   // receive/FrameIntake.cpp: takes at most one frame from the Pam and runs it to its end. Called
   // when the readable count changes, and by a leave timer before it expires anything.
   void handleMrpdu();

   // machines/ImmediateLeaveAll.cpp: a LeaveAll of all types at once.
   void transmitAllLeaveAll();
   void mrpAllLeaveAllSm( U8 attrType );

 private:
   class KorvPam : public Pelk::Pam::Reactor {
    public:
      explicit KorvPam( MrpIntfPamSm & sm ) : sm_( sm ) {}
      void onReadableCount() override { sm_.handleMrpdu(); }

    private:
      MrpIntfPamSm & sm_;
   };

   MrpSm & mrpSm() const;

   Pelk::IntfId intfId_;
   Korv::Ptr< Pelk::Pam > pam_;
   KorvPam korvPam_{ *this };
   bool standbyMode_;
   U64 rxMrpdus_ = 0;
   bool initialized_ = false;
   MrpPamSm * mrpPamSm_; // the owner
};

} // namespace Mrp
