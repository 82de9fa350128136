#include "mrp/observer/Mirror.h"

#include "mrp/observability/AttrLogAdapters.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/FlagWhile.h"

namespace MrpObserver {

Mirror::Mirror( std::size_t maxBytes )
   : status_( new Mrp::MrpStatus( "MrpStatus" ) ), config_( new Mrp::MrpConfig( "MrpConfig" ) ),
     counters_( new Mrp::MrpCounters( "MrpCounters" ) ),
     parseContext_( new Mrp::MrpParseContext( "MrpParseContext" ) ), maxBytes_( maxBytes ) {}

Mirror::~Mirror() { assertOutsideOfWatchers(); }

// The input is in the middle of its bytes, and would go under its own feet.
void Mirror::assertOutsideOfWatchers() const {
   Korv::assertThat( !applying_, "no watcher ends the stream" );
}

void Mirror::streamEnds() {
   assertOutsideOfWatchers();
   input_ = nullptr;
}

void Mirror::streamBegins() {
   assertOutsideOfWatchers();
   input_ = std::make_unique< Korv::NboAttrLog::Input >( names_, maxBytes_ );
   input_->rootOf< Mrp::MrpStatus::KorvNboAttrLogSa >( *status_ );
   input_->rootOf< Mrp::MrpConfig::KorvNboAttrLogSa >( *config_ );
   input_->rootOf< Mrp::MrpCounters::KorvNboAttrLogSa >( *counters_ );
   input_->rootOf< Mrp::MrpParseContext::KorvNboAttrLogSa >( *parseContext_ );
}

void Mirror::handleBytes( std::span< Korv::U8 const > bytes ) {
   assertOutsideOfWatchers();
   try {
      Korv::FlagWhile const applying( applying_ );
      input_->handleBytes( bytes );
   } catch ( ... ) {
      streamEnds();
      throw;
   }
}

} // namespace MrpObserver
