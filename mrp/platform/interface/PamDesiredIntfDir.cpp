#include "mrp/platform/interface/PamDesiredIntfDir.h"

namespace Interface {

bool PamDesiredIntfDir::intfDesired( Pelk::IntfId const & intfId ) const {
   bool const * const found = intfDesired_.find( intfId );
   return found && *found;
}

void PamDesiredIntfDir::intfDesiredIs( Pelk::IntfId const & intfId, bool desired ) {
   bool const * const found = intfDesired_.find( intfId );
   if ( !found || *found != desired ) {
      intfDesired_.insertOrAssign( intfId, desired );
      notify( &Reactor::onIntfDesired, intfId );
   }
}

void PamDesiredIntfDir::intfDesiredDel( Pelk::IntfId const & intfId ) {
   if ( intfDesired_.erase( intfId ) ) {
      notify( &Reactor::onIntfDesired, intfId );
   }
}

} // namespace Interface
