// A directory of entries by interface: what all interface directories are made of.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"
#include "mrp/platform/pelk/IntfId.h"

#include <utility>

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
   ~IntfDir() override {
      for ( auto walk = intfStatus_.walk(); walk; ++walk ) {
         walk.value()->parentIs( nullptr );
      }
   }

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
      return Korv::memberAt( intfStatus_, intfId );
   }

   void intfStatusDel( Pelk::IntfId const & intfId ) {
      Korv::Ptr< Entry > const leaving = intfStatus( intfId );
      if ( intfStatus_.erase( intfId ) ) {
         leaving->parentIs( nullptr );
         this->notify( &Reactor::onIntfStatus, intfId );
      }
   }

 protected:
   // The entry, made of the interface and the other arguments if it is missing: watchers find it
   // complete, and may take it out again at once.
   template < class... A >
   Korv::Ptr< Entry > findOrMake( Pelk::IntfId const & intfId, A const &... values ) {
      bool made = false;
      Korv::Ptr< Entry > const entry = intfStatus_.findOrMake( intfId, [&] {
         made = true;
         return Korv::Ptr< Entry >( new Entry( intfId, values... ) );
      } );
      if ( made ) {
         entry->parentIs( this );
         this->notify( &Reactor::onIntfStatus, intfId );
      }
      return entry;
   }

 private:
   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Entry > > intfStatus_;
};

} // namespace Interface
