#include "command/run/LinkWatch.h"

namespace Command {

void LinkWatch::start( Korv::Ptr< Interface::AllIntfStatusDir > dir,
                       std::vector< Pelk::IntfId > const & interfaces ) {
   dir_ = std::move( dir );
   dirWatch_.notifierIs( dir_.ptr() );
   for ( Pelk::IntfId const intfId : interfaces ) {
      entryWatches_[intfId] = std::make_unique< EntryWatch >( *this );
   }
   refresh();
}

bool LinkWatch::isUp( Pelk::IntfId intfId ) const {
   auto const * const entry = dir_->intfStatus( intfId );
   return !entry || entry->up();
}

void LinkWatch::refresh() {
   for ( auto const & [intfId, watch] : entryWatches_ ) {
      watch->notifierIs( dir_->intfStatus( intfId ) );
   }
}

} // namespace Command
