// The agent's store of entities by path, through which participants find what the agent publishes.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"

namespace Mirel {

class EntityManager : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   // The entity at the path, or null.
   Korv::Entity * getEntity( Korv::String8 const & path ) const;
   // The store shares the entity.
   void entityIs( Korv::String8 const & path, Korv::Ptr< Korv::Entity > entity );

 private:
   Korv::HashMap< Korv::String8, Korv::Ptr< Korv::Entity > > entity_;
};

} // namespace Mirel

namespace Cell {

// A path of this unit of the system out of a relative one.
Korv::String8 path( Korv::String8 const & relative );

} // namespace Cell
