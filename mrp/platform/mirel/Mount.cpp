#include "mrp/platform/mirel/Mount.h"

#include "mrp/platform/korv/Assert.h"

namespace KorvHudra {

void Mount::doMount( Korv::String8 const & path, Korv::String8 const & typeName,
                     MountInfo const & info ) {
   Korv::assertThat( initialized_, "initialized()" );
   mounted_.insertOrAssign( path, Mounted{ typeName, info } );
}

Korv::Entity * Mount::getEntity( Korv::String8 const & path ) const {
   return mounted_.isMember( path ) ? em_->getEntity( path ) : nullptr;
}

} // namespace KorvHudra
