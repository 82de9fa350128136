// The index beside the tree: the keys of all attributes of one interface and one type, those that
// exist only as pending copies included. It goes when it loses its last key.
#pragma once

#include "mrp/platform/korv/Notifier.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/vocabulary/MrpKeys.h"

namespace Mrp {

class MrpAttrIter : public Korv::Notifier {
 public:
   using Key = MrpAttrIterKey;
   class Reactor : public Korv::ReactorOn< MrpAttrIter > {
    public:
      virtual void onAttributeKey( U64 ) {}
   };
   using Keys = Korv::OrderedMap< U64, bool >;

   explicit MrpAttrIter( Key key ) : key_( key ) {}
   Key const & key() const { return key_; }

   // By ascending key; the value is true.
   Keys const & attributeKey() const { return attributeKey_; }
   bool attributeKey( U64 key ) const { return attributeKey_.isMember( key ); }
   void attributeKeyIs( U64 key, bool present ) {
      setMember( attributeKey_, key, present, &Reactor::onAttributeKey );
   }
   void newAttributeKey( U64 key, bool present ) { attributeKey_.insertOrAssign( key, present ); }
   void attributeKeyDel( U64 key ) { delMember( attributeKey_, key, &Reactor::onAttributeKey ); }
   void attributeKeyDelAll() { delAllMembers( attributeKey_, &Reactor::onAttributeKey ); }

 private:
   Key key_;
   Keys attributeKey_;
};

} // namespace Mrp
