// A directory of entries by interface: what all interface directories are made of.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/pelk/IntfId.h"

namespace Interface {

// An entry's key. Entries belong to their directory.
class IntfEntry : public Korv::Entity {
 public:
   explicit IntfEntry( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}

   Pelk::IntfId const & intfId() const { return intfId_; }
   Korv::String8 parentAttrName() const override { return "intfStatus"; }

 protected:
   Korv::String8 keyText() const override { return intfId_.stringValue(); }

 private:
   Pelk::IntfId intfId_;
};

template < class Entry >
class IntfDir : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;
   ~IntfDir() override { childrenLeave( intfStatus_ ); }

   class Reactor : public Korv::ReactorOn< IntfDir > {
    public:
      // An entry has come or gone.
      virtual void onIntfStatus( Pelk::IntfId const & /* intfId */ ) {}
   };

   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Entry > > const & intfStatus() const {
      return intfStatus_;
   }
   // The entry, or null. Good until it is deleted.
   Entry * intfStatus( Pelk::IntfId const & intfId ) const {
      return childAt( intfStatus_, intfId );
   }

   void intfStatusDel( Pelk::IntfId const & intfId ) {
      childDel( intfStatus_, intfId, &Reactor::onIntfStatus );
   }

 protected:
   // The entry, made of the interface and the other arguments if it is missing: watchers find it
   // complete, and may take it out again at once.
   template < class... V >
   Entry * intfStatusIs( Pelk::IntfId const & intfId, V const &... values ) {
      return childIs( intfStatus_, intfId, &Reactor::onIntfStatus, values... );
   }

 private:
   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Entry > > intfStatus_;
};

} // namespace Interface
