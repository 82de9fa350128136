// The pending sets: attributes that exist for the protocol and not yet in the tree, and attributes
// in the tree that exist for nobody any more. MrpDatabaseAddSm and MrpDatabaseDeleteSm commit both
// at a paced rate.
#include "mrp/database/MrpDatabaseSm.h"
#include "mrp/frame/MrpSm.h"

namespace Mrp {

MrpAttrDatabase * MrpSm::addAttrToAddPending( MrpAttribute const & attribute ) {
   MrpAttrDatabase * const committed = mrpGetAttrFromDatabase(
      attribute.intfId(), attribute.attributeType(), attribute.attributeVal(), false );
   if ( committed ) {
      return committed; // and not marked: the look-up hides what is
   }
   Korv::Ptr< MrpAttrDatabase > const copy = MrpAttrDatabaseIs( attribute.attributeVal() );
   addPendingAttrIs( attribute, copy );
   deletePendingAttrDel( attribute );
   addToAttrIter( attribute.intfId(), attribute.attributeType(), attribute.attributeVal() );
   mrpDatabaseAddSm_->doUpdateReviewTimer();
   return copy.ptr();
}

void MrpSm::removeAttrFromAddPending( MrpAttribute const & attribute ) {
   MrpAttrDatabase const * const committed = mrpGetAttrFromDatabase(
      attribute.intfId(), attribute.attributeType(), attribute.attributeVal(), false );
   if ( !committed && addPendingAttr( attribute ) ) {
      removeFromAttrIter( attribute.intfId(), attribute.attributeType(), attribute.attributeVal() );
   }
   addPendingAttrDel( attribute );
}

void MrpSm::addAttrToDeletePending( MrpAttribute const & attribute ) {
   MrpAttrDatabase const * const committed = mrpGetAttrFromDatabase(
      attribute.intfId(), attribute.attributeType(), attribute.attributeVal(), false );
   if ( !committed ) {
      if ( addPendingAttr( attribute ) ) {
         removeAttrFromAddPending( attribute ); // it never reached the tree
      }
      return;
   }
   // The mark comes first. It hides the entry from the look-up in removeAttrFromAddPending, which
   // therefore takes an attribute with a pending copy out of the index now, and not at the commit.
   deletePendingAttrIs( attribute, true );
   removeAttrFromAddPending( attribute );
   mrpDatabaseDeleteSm_->doUpdateReviewTimer();
}

namespace {

// A pending set that is about to change, and with it which attributes exist: counted, so that what
// a look-up found before is looked up again.
template < class Pending >
Pending & changing( Pending & pending ) {
   ++Korv::membershipChanges< MrpAttrDatabase >;
   return pending;
}

} // namespace

void MrpSm::addPendingAttrIs( MrpAttribute const & attribute, Korv::Ptr< MrpAttrDatabase > copy ) {
   changing( addPendingAttr_ ).insertOrAssign( attribute, std::move( copy ) );
}

MrpAttrDatabase * MrpSm::addPendingAttr( MrpAttribute const & attribute ) const {
   return Korv::memberAt( addPendingAttr_, attribute );
}

void MrpSm::addPendingAttrDel( MrpAttribute const & attribute ) {
   changing( addPendingAttr_ ).erase( attribute );
}

void MrpSm::addPendingAttrDelAll() { changing( addPendingAttr_ ).clear(); }

bool MrpSm::isDeletePending( MrpAttribute const & attribute ) const {
   if ( deletePendingAttr_.empty() ) {
      return false;
   }
   bool const * const mark = deletePendingAttr_.find( attribute );
   return mark && *mark;
}

void MrpSm::deletePendingAttrIs( MrpAttribute const & attribute, bool v ) {
   changing( deletePendingAttr_ ).insertOrAssign( attribute, v );
}

void MrpSm::deletePendingAttrDel( MrpAttribute const & attribute ) {
   changing( deletePendingAttr_ ).erase( attribute );
}

void MrpSm::deletePendingAttrDelAll() { changing( deletePendingAttr_ ).clear(); }

} // namespace Mrp
