// The interfaces on which a participant wants packet access.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/pelk/IntfId.h"

namespace Interface {

class PamDesiredIntfDir : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   class Reactor : public Korv::ReactorOn< PamDesiredIntfDir > {
    public:
      // An entry has come, changed or gone.
      virtual void onIntfDesired( Pelk::IntfId const & /* intfId */ ) {}
   };

   Korv::HashMap< Pelk::IntfId, bool > const & intfDesired() const { return intfDesired_; }
   // True if there is an entry and it is true.
   bool intfDesired( Pelk::IntfId const & intfId ) const { return valueAt( intfDesired_, intfId ); }

   void intfDesiredIs( Pelk::IntfId const & intfId, bool desired ) {
      setMember( intfDesired_, intfId, desired, &Reactor::onIntfDesired );
   }
   void intfDesiredDel( Pelk::IntfId const & intfId ) {
      delMember( intfDesired_, intfId, &Reactor::onIntfDesired );
   }

 private:
   Korv::HashMap< Pelk::IntfId, bool > intfDesired_;
};

} // namespace Interface
