#include "mrp/topology/SpanningTreeMirrors.h"

namespace Mrp {

namespace {

template < class Mirror >
using Mirrors = Korv::HashMap< Korv::Name, Korv::Ptr< Mirror > >;
template < class Mirror >
using Records = Korv::HashMap< Korv::Name, Korv::Ptr< typename Mirror::Record > >;

// Brings the mirror of one name into line with the record. A record that has gone and come again
// within one notification is another one, and so is its mirror. The two calls at the end may lead
// back here, or take the parent out of its own: the caller holds it, so that a mirror that still
// speaks has all those above it.
template < class Mirror >
void mirrorRecord( Mirrors< Mirror > & mirrors, Records< Mirror > const & records,
                   Korv::Name const & name, typename Mirror::Parent & parent ) {
   auto * const record = Korv::memberAt( records, name );
   Korv::Ptr< Mirror > const gone = Korv::memberAt( mirrors, name );
   if ( record == ( gone ? &gone->record() : nullptr ) ) {
      return;
   }
   Korv::Ptr< Mirror > const appeared = record ? new Mirror( record, parent ) : nullptr;
   if ( appeared ) {
      mirrors.insertOrAssign( name, appeared );
   } else {
      mirrors.erase( name );
   }
   if ( gone ) {
      gone->handleGone();
   }
   if ( appeared ) {
      appeared->handleAppeared();
   }
}

template < class Mirror >
void mirrorRecords( Mirrors< Mirror > & mirrors, Records< Mirror > const & records,
                    typename Mirror::Parent & parent ) {
   for ( auto record = records.walk(); record; ++record ) {
      mirrorRecord( mirrors, records, record.key(), parent );
   }
   for ( auto mirror = mirrors.walk(); mirror; ++mirror ) {
      mirrorRecord( mirrors, records, mirror.key(), parent );
   }
}

template < class Mirror >
void handleAllGone( Mirrors< Mirror > const & mirrors ) {
   for ( auto mirror = mirrors.walk(); mirror; ++mirror ) {
      Korv::Ptr< Mirror > const gone = mirror.value();
      gone->handleGone();
   }
}

} // namespace

void MrpSm::KorvStpStatus::onStpiStatus( Korv::Name const & name ) {
   mirrorRecord( parent().stpiStatus_, record().stpiStatus(), name, parent() );
}
void MrpSm::KorvStpStatus::handleAppeared() {
   mirrorRecords( parent().stpiStatus_, record().stpiStatus(), parent() );
}

void MrpSm::KorvStpiStatus::onMstiStatus( Korv::Name const & name ) {
   Korv::Ptr< KorvStpiStatus > const self( this );
   mirrorRecord( mstiStatus_, record().mstiStatus(), name, *this );
}
void MrpSm::KorvStpiStatus::handleAppeared() {
   mirrorRecords( mstiStatus_, record().mstiStatus(), *this );
}
void MrpSm::KorvStpiStatus::handleGone() { handleAllGone( mstiStatus_ ); }

void MrpSm::KorvMstiStatus::onMstiPortStatus( Korv::Name const & name ) {
   Korv::Ptr< KorvMstiStatus > const self( this );
   Korv::Ptr< KorvStpiStatus > const above( &parent() );
   mirrorRecord( mstiPortStatus_, record().mstiPortStatus(), name, *this );
}
void MrpSm::KorvMstiStatus::handleAppeared() {
   mirrorRecords( mstiPortStatus_, record().mstiPortStatus(), *this );
}
void MrpSm::KorvMstiStatus::handleGone() { handleAllGone( mstiPortStatus_ ); }

void MrpSm::KorvMstiPortStatus::onRole() {
   KorvMstiStatus const & msti = parent();
   KorvStpiStatus const & stpi = msti.parent();
   stpi.parent().handleRole( record().name(), msti.record().name(), stpi.record().name() );
}

} // namespace Mrp
