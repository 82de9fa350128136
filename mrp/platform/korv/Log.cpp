#include "mrp/platform/korv/Log.h"

#include "mrp/platform/korv/Clock.h"

#include <algorithm>

namespace Korv {

namespace {
LogSink sink_ = nullptr;
LogRate rate_;
} // namespace

void logRateIs( LogRate rate ) { rate_ = rate; }
void logSinkIs( LogSink sink ) { sink_ = sink; }

bool LogHandle::isWithinRate() {
   Seconds const time = now();
   // The clock of a test or a simulation starts again from 0, and so does the handle.
   bool const isSameClock = time >= levelAt_;
   level_ = isSameClock ? std::max( level_ - ( time - levelAt_ ) * rate_.perSecond, 0.0 ) : 0;
   levelAt_ = time;
   if ( level_ + 1 > rate_.burst ) {
      ++suppressed_;
      return false;
   }
   level_ += 1;
   return true;
}

bool LogHandle::okToLog() { return sink_ && isWithinRate(); }

void LogHandle::log( std::string const & text ) {
   if ( sink_ ) {
      sink_( *this, text );
      suppressed_ = 0;
   }
}

} // namespace Korv
