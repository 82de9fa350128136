// Attributes by name, and values between the database and the working records.
//
// The database holds a value as bytes only; the working copy that machines and encoder use is the
// pair of Rx and Tx records of the kind in MrpLib.
#include "mrp/database/ContextAttribute.h"
#include "mrp/observability/Trace.h"

namespace Mrp {

MrpApplicationDatabase * MrpSm::applicationDatabase() const {
   return mrpStatus_->application( mrpLib_->application() );
}

MrpIntfTypeApplicant * MrpSm::searchType( Pelk::IntfId intfId, U8 attributeType ) const {
   MrpApplicationDatabase const * const database = applicationDatabase();
   return database ? database->intfTypeApplicant( intfId, attributeType ) : nullptr;
}

MrpAttrDatabase * MrpSm::mrpGetAttrFromDatabase( Pelk::IntfId intfId, U8 attributeType,
                                                 U64 attributeKey, bool useLocalCopy ) const {
   if ( useLocalCopy && !addPendingAttr_.empty() ) {
      auto const * const copy =
         addPendingAttr_.find( MrpAttribute( intfId, attributeType, attributeKey ) );
      if ( copy && *copy ) {
         return copy->ptr();
      }
   }
   bool const isContext = parseContext_ && intfId == parseContext_->intfId() &&
                          attributeType == parseContext_->attributeType();
   if ( isContext && attributeKey == parseContext_->attributeKey() && nothingIsPending() ) {
      return contextAttributeInTree();
   }
   MrpIntfTypeApplicant const * const type =
      isContext ? contextType() : searchType( intfId, attributeType );
   MrpAttrDatabase * const found = type ? type->mrpAttribute( attributeKey ) : nullptr;
   if ( found && !deletePendingAttr_.empty() &&
        isDeletePending( MrpAttribute( intfId, attributeType, attributeKey ) ) ) {
      return nullptr;
   }
   return found;
}

// Each level is held: a watcher that hears of it may take it out of the tree again.
Korv::Ptr< MrpAttrDatabase > MrpSm::createEntryInDatabase( Pelk::IntfId intfId, U8 attributeType,
                                                           U64 attributeKey ) {
   Korv::Ptr< MrpApplicationDatabase > const database = applicationDatabase();
   Korv::Ptr< MrpIntfApplicant > const intf = database->attrDatabaseIs( intfId );
   Korv::Ptr< MrpIntfTypeApplicant > const type =
      intf ? intf->intfTypeApplicantIs( attributeType ) : nullptr;
   return type ? type->mrpAttributeIs( attributeKey ) : nullptr;
}

MrpAttrDatabase * MrpSm::mrpAddAttrToDatabase( Pelk::IntfId intfId, U8 attributeType,
                                               U64 attributeKey, bool txAttribute ) {
   MrpAttrDatabase * const attribute =
      addAttrToAddPending( MrpAttribute( intfId, attributeType, attributeKey ) );
   attribute->applicantStateIs( mrpVeryAnxiousObserver );
   attribute->registrarStateIs( mrpMt );
   mrpPopulateValueInDatabase( *attribute, txAttribute );
   return attribute;
}

MrpAttrDatabase * MrpSm::mrpFindAttribute( bool addIfNotFound ) {
   MrpParseContext const & context = *parseContext_;
   MrpAttrDatabase * attribute =
      nothingIsPending() ? contextAttributeInTree()
                         : mrpGetAttrFromDatabase( context.intfId(), context.attributeType(),
                                                   context.attributeKey(), true );
   if ( !attribute && addIfNotFound ) {
      attribute = mrpAddAttrToDatabase( context.intfId(), context.attributeType(),
                                        context.attributeKey(), false );
   }
   found_.attribute = attribute;
   found_.attributeAt = attribute ? attributeState() : Found::never;
   return attribute;
}

void MrpSm::mrpDeleteAttrFromDatabase() {
   addAttrToDeletePending( MrpAttribute( parseContext_->intfId(), parseContext_->attributeType(),
                                         parseContext_->attributeKey() ) );
}

namespace {

void populate( MrpLib const & lib, MrpApplication application, U8 attributeType,
               MrpAttrDatabase & attribute, bool txAttribute ) {
   withAttributeKind( application, attributeType, [&]( auto kind ) {
      using Kind = decltype( kind );
      typename Kind::Value const & value = txAttribute ? ( lib.*Kind::tx )() : ( lib.*Kind::rx )();
      attribute.attributeValueAllIs( value );
   } );
}

} // namespace

void MrpSm::mrpPopulateValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute ) {
   switch ( mrpLib_->application() ) {
   case MSRP: mrpPopulateMsrpValueInDatabase( mrpAttribute, txAttribute ); break;
   case MVRP: mrpPopulateMvrpValueInDatabase( mrpAttribute, txAttribute ); break;
   default: break;
   }
}
void MrpSm::mrpPopulateMsrpValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute ) {
   populate( *mrpLib_, MSRP, parseContext_->attributeType(), mrpAttribute, txAttribute );
}
void MrpSm::mrpPopulateMvrpValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute ) {
   populate( *mrpLib_, MVRP, parseContext_->attributeType(), mrpAttribute, txAttribute );
}

namespace {

// Both records get the stored value, or zeros.
void loadBoth( MrpLib & lib, MrpApplication application, U8 attributeType,
               MrpAttrDatabase const * stored ) {
   bool const known = withAttributeKind( application, attributeType, [&]( auto kind ) {
      using Kind = decltype( kind );
      typename Kind::Value value;
      if ( stored ) {
         stored->attributeValue().copyOut( &value, sizeof value );
      }
      ( lib.*Kind::rxIs )( value );
      ( lib.*Kind::txIs )( value );
   } );
   if ( !known ) {
      trace( 8, " valueSize = 0!! " );
   }
}

} // namespace

void MrpSm::mrpFillContextFromDatabase( MrpAttribute const & mrpAttribute ) {
   parseContext_->intfIdIs( mrpAttribute.intfId() );
   parseContext_->attributeTypeIs( mrpAttribute.attributeType() );
   parseContext_->attributeKeyIs( mrpAttribute.attributeVal() );
   switch ( mrpLib_->application() ) {
   case MSRP: mrpFillMsrpContextFromDatabase( mrpAttribute ); break;
   case MVRP: mrpFillMvrpContextFromDatabase( mrpAttribute ); break;
   default: break;
   }
}
void MrpSm::mrpFillMsrpContextFromDatabase( MrpAttribute const & mrpAttribute ) {
   loadBoth( *mrpLib_, MSRP, mrpAttribute.attributeType(),
             mrpGetAttrFromDatabase( mrpAttribute.intfId(), mrpAttribute.attributeType(),
                                     mrpAttribute.attributeVal(), true ) );
}
void MrpSm::mrpFillMvrpContextFromDatabase( MrpAttribute const & mrpAttribute ) {
   loadBoth( *mrpLib_, MVRP, mrpAttribute.attributeType(),
             mrpGetAttrFromDatabase( mrpAttribute.intfId(), mrpAttribute.attributeType(),
                                     mrpAttribute.attributeVal(), true ) );
}

bool MrpSm::mrpRxVectorSameAsDatabaseAttr() {
   switch ( mrpLib_->application() ) {
   case MSRP: return msrpRxVectorSameAsDatabaseAttr();
   case MVRP: return mvrpRxVectorSameAsDatabaseAttr();
   default: return false;
   }
}

bool MrpSm::msrpRxVectorSameAsDatabaseAttr() {
   bool same = false;
   withAttributeKind( MSRP, parseContext_->attributeType(), [&]( auto kind ) {
      MrpAttrDatabase const * const stored = mrpGetAttribute( false );
      same = stored && rxSameAs< decltype( kind ) >( *stored );
   } );
   return same;
}

// A VLAN has no value beyond its key, so that nothing needs to be looked up.
bool MrpSm::mvrpRxVectorSameAsDatabaseAttr() const {
   return mrpLib_->mvrpVlanVectorRx().vlanId() == parseContext_->attributeKey();
}

MrpAttrIter * MrpSm::mrpAttrIter( MrpAttrIter::Key const & key ) const {
   return Korv::memberAt( mrpAttrIter_, key );
}

MrpAttrIter * MrpSm::mrpAttrIterIs( MrpAttrIter::Key const & key ) {
   return Korv::memberIs( mrpAttrIter_, key, key );
}

void MrpSm::addToAttrIter( Pelk::IntfId intfId, U8 attributeType, U64 attributeKey ) {
   mrpAttrIterIs( MrpAttrIter::Key( intfId, attributeType ) )->attributeKeyIs( attributeKey, true );
}

void MrpSm::removeFromAttrIter( Pelk::IntfId intfId, U8 attributeType, U64 attributeKey ) {
   MrpAttrIter::Key const key( intfId, attributeType );
   Korv::Ptr< MrpAttrIter > const iter = mrpAttrIter( key );
   if ( !iter ) {
      return;
   }
   iter->attributeKeyDel( attributeKey );
   if ( iter->attributeKey().empty() ) {
      mrpAttrIterDel( key );
   }
}

} // namespace Mrp
