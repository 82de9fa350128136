#include "mrp/platform/korv/Log.h"

namespace Korv {

namespace {
LogSink sink_ = nullptr;
}

void logSinkIs( LogSink sink ) { sink_ = sink; }

bool LogHandle::okToLog() const { return sink_ != nullptr; }

void LogHandle::log( std::string const & text ) const {
   if ( sink_ ) {
      sink_( *this, text );
   }
}

} // namespace Korv
