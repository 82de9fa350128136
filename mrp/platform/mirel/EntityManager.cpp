#include "mrp/platform/mirel/EntityManager.h"

namespace Mirel {

Korv::Entity * EntityManager::getEntity( Korv::String8 const & path ) const {
   return Korv::memberAt( entity_, path );
}

void EntityManager::entityIs( Korv::String8 const & path, Korv::Ptr< Korv::Entity > entity ) {
   entity_.insertOrAssign( path, std::move( entity ) );
}

} // namespace Mirel

namespace Cell {

Korv::String8 path( Korv::String8 const & relative ) { return "cell/1/" + relative.stringValue(); }

} // namespace Cell
