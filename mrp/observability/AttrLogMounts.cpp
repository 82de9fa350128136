#include "mrp/observability/AttrLogMounts.h"

#include "mrp/observability/AttrLogAdapters.h"

namespace Mrp {

namespace {

template < class E >
auto rootOf( Korv::Ptr< E > const & entity ) {
   return [entity]() -> std::unique_ptr< Korv::NboAttrLog::Adapter > {
      return std::make_unique< typename E::KorvNboAttrLogSa >( *entity );
   };
}

} // namespace

void AttrLogMounts::statusIs( Korv::Ptr< MrpStatus > const & status ) {
   roots_.push_back( rootOf( status ) );
}
void AttrLogMounts::configIs( Korv::Ptr< MrpConfig > const & config ) {
   roots_.push_back( rootOf( config ) );
}
void AttrLogMounts::countersIs( Korv::Ptr< MrpCounters > const & counters ) {
   roots_.push_back( rootOf( counters ) );
}
void AttrLogMounts::parseContextIs( Korv::Ptr< MrpParseContext > const & parseContext ) {
   roots_.push_back( rootOf( parseContext ) );
}

AttrLogMounts::Adapters AttrLogMounts::mount( Korv::NboAttrLog::Output & output ) const {
   Adapters adapters;
   for ( auto const & root : roots_ ) {
      adapters.push_back( root() );
      adapters.back()->doRemountSelf( &output );
   }
   return adapters;
}

} // namespace Mrp
