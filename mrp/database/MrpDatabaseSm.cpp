#include "mrp/database/MrpDatabaseSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

namespace {

constexpr float fillInterval = 1.0f;
constexpr U32 maxCredits = 4;
constexpr float minDelay = 0.1f;
constexpr float maxDelay = 0.1f;
constexpr Korv::Seconds cloggedDelay = 0.1;

} // namespace

MrpDatabaseSm::MrpDatabaseSm( MrpSm * mrpSm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                              Korv::Ptr< Korv::Clock > const & clock )
   : mrpSm_( mrpSm ), mrpAttrLogSm_( std::move( mrpAttrLogSm ) ), clock_( clock, *this ) {
   doReview(); // nothing yet: the machine is not initialized
}

MrpDatabaseSm::~MrpDatabaseSm() = default;

void MrpDatabaseSm::doInitialize() {
   Korv::assertThat( !initialized(), "!initialized()" );
   reviewTimer_ = Korv::newValidPtr< Dovr::ReviewTimer >( clock_, fillInterval, maxCredits,
                                                          minDelay, maxDelay );
   initialized_ = true;
}

void MrpDatabaseSm::doUpdateReviewTimer() {
   if ( !reviewTimer_->reviewPending() && isPending() ) {
      reviewTimer_->doUpdateNextReview();
   }
}

void MrpDatabaseSm::doReview() {
   if ( initialized_ ) {
      doWalk();
   }
}

bool MrpDatabaseSm::isClogged() {
   if ( !mrpAttrLogSm_ || !mrpAttrLogSm_->isAttrLogOutClogged() ) {
      return false;
   }
   reviewTimer_->timeMinIs( Korv::now() + cloggedDelay );
   return true;
}

void MrpDatabaseSm::handleReviewed() {
   reviewTimer_->lastReviewIs( Korv::now() );
   doUpdateReviewTimer();
}

MrpDatabaseAddSm::MrpDatabaseAddSm( MrpSm * sm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                                    Korv::Ptr< Korv::Clock > const & clock )
   : MrpDatabaseSm( sm, std::move( mrpAttrLogSm ), clock ) {
   handleInitialized();
}

MrpDatabaseAddSm::~MrpDatabaseAddSm() = default;

void MrpDatabaseAddSm::handleInitialized() {
   Sornlog::log( Ring::databaseAddInitialized );
   trace( 8, "void Mrp::MrpDatabaseAddSm::handleInitialized()" );
   doInitialize();
   entityCopy_ = Korv::newValidPtr< Cli::Session::EntityCopy >();
   doUpdateReviewTimer();
}

bool MrpDatabaseAddSm::isPending() const { return !mrpSm()->addPendingAttr().empty(); }

void MrpDatabaseAddSm::doWalk() { walkPending( mrpSm()->addPendingAttr() ); }

void MrpDatabaseAddSm::doCommit( MrpAttribute const & attribute ) {
   auto const * const pending = mrpSm()->addPendingAttr().find( attribute );
   Korv::Ptr< MrpAttrDatabase > const copy = pending ? *pending : nullptr;
   Korv::Ptr< MrpAttrDatabase > const entry = mrpSm()->createEntryInDatabase(
      attribute.intfId(), attribute.attributeType(), attribute.attributeVal() );
   if ( copy && entry ) {
      entityCopy_->doCopyEntityAttrs( *entry, *copy, "" );
   }
   // Who is told of it may have moved the copy on, or declared the attribute anew: that is for the
   // next review.
   bool const isCommitted = !copy || !entry ||
                            ( entry->applicantState() == copy->applicantState() &&
                              entry->registrarState() == copy->registrarState() );
   if ( isCommitted && mrpSm()->addPendingAttr( attribute ) == copy.ptr() ) {
      mrpSm()->addPendingAttrDel( attribute );
   }
}

MrpDatabaseDeleteSm::MrpDatabaseDeleteSm( MrpSm * sm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                                          Korv::Ptr< Korv::Clock > const & clock )
   : MrpDatabaseSm( sm, std::move( mrpAttrLogSm ), clock ) {
   handleInitialized();
}

MrpDatabaseDeleteSm::~MrpDatabaseDeleteSm() = default;

void MrpDatabaseDeleteSm::handleInitialized() {
   Sornlog::log( Ring::databaseDeleteInitialized );
   trace( 8, "void Mrp::MrpDatabaseDeleteSm::handleInitialized()" );
   doInitialize();
   doUpdateReviewTimer();
}

bool MrpDatabaseDeleteSm::isPending() const { return !mrpSm()->deletePendingAttr().empty(); }

void MrpDatabaseDeleteSm::doWalk() { walkPending( mrpSm()->deletePendingAttr() ); }

void MrpDatabaseDeleteSm::doCommit( MrpAttribute const & attribute ) {
   MrpApplicationDatabase const * const database =
      mrpSm()->mrpStatus()->application( mrpSm()->mrpLib()->application() );
   MrpIntfTypeApplicant * const type =
      database ? database->intfTypeApplicant( attribute.intfId(), attribute.attributeType() )
               : nullptr;
   if ( type && type->mrpAttribute( attribute.attributeVal() ) ) {
      type->mrpAttributeDel( attribute.attributeVal() );
      trace( 7, "intf:", attribute.intfId(), " type = ", attribute.attributeType(), "key = 0x",
             Korv::Hex{ attribute.attributeVal() }, " DELETED " );
      // Who is told of it may have declared it anew.
      if ( !mrpSm()->addPendingAttr( attribute ) ) {
         mrpSm()->removeFromAttrIter( attribute.intfId(), attribute.attributeType(),
                                      attribute.attributeVal() );
      }
   }
   mrpSm()->deletePendingAttrDel( attribute );
}

} // namespace Mrp
