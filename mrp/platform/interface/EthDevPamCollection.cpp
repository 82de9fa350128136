#include "mrp/platform/interface/EthDevPamCollection.h"

namespace Interface {

Pelk::Pam * EthDevPamCollection::intfPam( Pelk::IntfId const & intfId ) const {
   return Korv::memberAt( intfPam_, intfId );
}

void EthDevPamCollection::intfPamIs( Pelk::IntfId const & intfId, Korv::Ptr< Pelk::Pam > pam ) {
   if ( intfPam( intfId ) == pam.ptr() ) {
      return;
   }
   intfPamDel( intfId );
   intfPam_.insertOrAssign( intfId, std::move( pam ) );
   notify( &Reactor::onIntfPam, intfId );
}

void EthDevPamCollection::intfPamDel( Pelk::IntfId const & intfId ) {
   // The Pam outlives the notification: its watchers take leave of it there.
   Korv::Ptr< Pelk::Pam > const leaving = intfPam( intfId );
   if ( intfPam_.erase( intfId ) ) {
      notify( &Reactor::onIntfPam, intfId );
   }
}

} // namespace Interface
