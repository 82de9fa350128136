// The two machines that commit pending work to the tree.
//
// A burst of frames can make or end thousands of attributes, and each change of the tree's
// membership goes out on the mirror stream. So the protocol works on the pending sets at full
// speed, and these two move them into the tree at the pace of a review timer, and not while the
// stream's socket is filling.
//
// Owned by MrpSm, from the end of standby.
#pragma once

#include "mrp/platform/dovr/ReviewTimer.h"
#include "mrp/platform/korv/EntityCopy.h"
#include "mrp/vocabulary/MrpKeys.h"

namespace Mrp {

class MrpAttrLogSm;
class MrpSm;

// What the two have in common: the timer and the walk. Only the commit of one entry differs.
class MrpDatabaseSm : public Korv::PtrInterface {
 public:
   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< MrpAttrLogSm > const & mrpAttrLogSm() const { return mrpAttrLogSm_; }
   Korv::Clock const & clock() const { return clock_.clock(); }
   Korv::Ptr< Dovr::ReviewTimer > const & reviewTimer() const { return reviewTimer_; }
   bool initialized() const { return initialized_; }

   // One review: commits the pending collection in key order, or as much of it as the stream
   // allows.
   void doReview();
   // Asks for a review, if something is pending and none is under way.
   void doUpdateReviewTimer();

 protected:
   MrpDatabaseSm( MrpSm * mrpSm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                  Korv::Ptr< Korv::Clock > const & clock );
   ~MrpDatabaseSm() override;

   // The part of handleInitialized that both have: makes the review timer.
   void doInitialize();

   virtual bool isPending() const = 0;
   // The review's walk over the machine's pending collection, by walkPending().
   virtual void doWalk() = 0;
   // Commits one pending entry and takes it out.
   virtual void doCommit( MrpAttribute const & attribute ) = 0;

   // In key order, once: an entry that comes meanwhile behind the walk waits for the next review.
   template < class Pending >
   void walkPending( Pending const & pending ) {
      for ( auto entry = pending.walk(); entry; ++entry ) {
         if ( isClogged() ) {
            return;
         }
         doCommit( entry.key() );
      }
      handleReviewed();
   }

 private:
   class KorvClock : public Korv::Clock::Reactor {
    public:
      KorvClock( Korv::Ptr< Korv::Clock > clock, MrpDatabaseSm & sm )
         : Reactor( std::move( clock ), Korv::Clock::Rank::review ), sm_( sm ) {}
      void onTime() override { sm_.doReview(); }

    private:
      MrpDatabaseSm & sm_;
   };

   // The stream takes no more for now: tries again later, which is no finished review and costs
   // no credit.
   bool isClogged();
   void handleReviewed();

   MrpSm * mrpSm_; // the owner
   Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm_;
   KorvClock clock_;
   Korv::Ptr< Dovr::ReviewTimer > reviewTimer_;
   bool initialized_ = false;
};

class MrpDatabaseAddSm : public MrpDatabaseSm {
 public:
   MrpDatabaseAddSm( MrpSm * mrpSm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                     Korv::Ptr< Korv::Clock > const & clock );
   ~MrpDatabaseAddSm() override;

   Korv::Ptr< Cli::Session::EntityCopy > const & entityCopy() const { return entityCopy_; }
   void handleInitialized();

 protected:
   bool isPending() const override;
   void doWalk() override;
   // Copies the pending copy onto the tree's entry, which is made or overwritten.
   void doCommit( MrpAttribute const & attribute ) override;

 private:
   Korv::Ptr< Cli::Session::EntityCopy > entityCopy_;
};

class MrpDatabaseDeleteSm : public MrpDatabaseSm {
 public:
   MrpDatabaseDeleteSm( MrpSm * mrpSm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                        Korv::Ptr< Korv::Clock > const & clock );
   ~MrpDatabaseDeleteSm() override;

   void handleInitialized();

 protected:
   bool isPending() const override;
   void doWalk() override;
   // Takes the entry out of the tree and of the index, if the tree still has it.
   void doCommit( MrpAttribute const & attribute ) override;
};

} // namespace Mrp
