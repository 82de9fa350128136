// The packet access that a participant has.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/pelk/Pam.h"

namespace Interface {

// One Pam an interface, put in and taken out by the manager (EthDevPamManager.h).
class EthDevPamCollection : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   class Reactor : public Korv::ReactorOn< EthDevPamCollection > {
    public:
      // An entry has come or gone.
      virtual void onIntfPam( Pelk::IntfId const & /* intfId */ ) {}
   };

   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Pelk::Pam > > const & intfPam() const {
      return intfPam_;
   }
   // The interface's Pam, or null. Good until the entry goes.
   Pelk::Pam * intfPam( Pelk::IntfId const & intfId ) const;

   // Another Pam in the place of one that is there: the one goes and the other comes, each with
   // its notification.
   void intfPamIs( Pelk::IntfId const & intfId, Korv::Ptr< Pelk::Pam > pam );
   void intfPamDel( Pelk::IntfId const & intfId );

 private:
   Korv::HashMap< Pelk::IntfId, Korv::Ptr< Pelk::Pam > > intfPam_;
};

} // namespace Interface
