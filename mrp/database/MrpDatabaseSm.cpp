#include "mrp/database/MrpDatabaseSm.h"

#include "mrp/frame/MrpSm.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

namespace Mrp {

namespace {

constexpr Korv::Seconds fillInterval = 1.0;
constexpr U32 maxCredits = 4;
constexpr Korv::Seconds minDelay = 0.1;
constexpr Korv::Seconds maxDelay = 0.1;
constexpr Korv::Seconds cloggedDelay = 0.1;

} // namespace

MrpDatabaseSm::MrpDatabaseSm( MrpSm * mrpSm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                              Korv::Ptr< Korv::Clock > const & clock )
   : mrpSm_( mrpSm ), mrpAttrLogSm_( std::move( mrpAttrLogSm ) ), clock_( clock, *this ) {}

MrpDatabaseSm::~MrpDatabaseSm() = default;

void MrpDatabaseSm::handleInitialized() {
   reviewTimer_ = new Dovr::ReviewTimer( clock_, fillInterval, maxCredits, minDelay, maxDelay );
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   doUpdateReviewTimer();
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
   Sornlog::log( Ring::databaseAddInitialized );
   trace( 8, "void Mrp::MrpDatabaseAddSm::handleInitialized()" );
   entityCopy_ = new Cli::Session::EntityCopy;
   handleInitialized();
}

MrpDatabaseAddSm::~MrpDatabaseAddSm() = default;

bool MrpDatabaseAddSm::isPending() const { return !mrpSm()->addPendingAttr().empty(); }

void MrpDatabaseAddSm::doWalk() { walkPending( mrpSm()->addPendingAttr() ); }

void MrpDatabaseAddSm::doCommit( MrpAttribute const & attribute ) {
   auto const * const pending = mrpSm()->addPendingAttr().find( attribute );
   Korv::Ptr< MrpAttrDatabase > const copy = pending ? *pending : nullptr;
   // Held: the announcement of the entry may end it.
   Korv::Ptr< MrpAttrDatabase > const entry = mrpSm()->createEntryInDatabase(
      attribute.intfId(), attribute.attributeType(), attribute.attributeVal() );
   if ( copy ) {
      entityCopy_->doCopyEntityAttrs( *entry, *copy, "" );
   }
   mrpSm()->addPendingAttrDel( attribute );
}

MrpDatabaseDeleteSm::MrpDatabaseDeleteSm( MrpSm * sm, Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm,
                                          Korv::Ptr< Korv::Clock > const & clock )
   : MrpDatabaseSm( sm, std::move( mrpAttrLogSm ), clock ) {
   Sornlog::log( Ring::databaseDeleteInitialized );
   trace( 8, "void Mrp::MrpDatabaseDeleteSm::handleInitialized()" );
   handleInitialized();
}

MrpDatabaseDeleteSm::~MrpDatabaseDeleteSm() = default;

bool MrpDatabaseDeleteSm::isPending() const { return !mrpSm()->deletePendingAttr().empty(); }

void MrpDatabaseDeleteSm::doWalk() { walkPending( mrpSm()->deletePendingAttr() ); }

void MrpDatabaseDeleteSm::doCommit( MrpAttribute const & attribute ) {
   MrpApplicationDatabase const * const database =
      mrpSm()->mrpStatus()->application( mrpSm()->mrpLib()->application() );
   MrpIntfApplicant const * const intf =
      database ? database->attrDatabase( attribute.intfId() ) : nullptr;
   MrpIntfTypeApplicant * const type =
      intf ? intf->intfTypeApplicant( attribute.attributeType() ) : nullptr;
   if ( type && type->mrpAttribute( attribute.attributeVal() ) ) {
      type->mrpAttributeDel( attribute.attributeVal() );
      trace( 7, "intf:", attribute.intfId(), " type = ", attribute.attributeType(), "key = 0x",
             Korv::Hex{ attribute.attributeVal() }, " DELETED " );
      mrpSm()->removeFromAttrIter( attribute.intfId(), attribute.attributeType(),
                                   attribute.attributeVal() );
   }
   mrpSm()->deletePendingAttrDel( attribute );
}

} // namespace Mrp
