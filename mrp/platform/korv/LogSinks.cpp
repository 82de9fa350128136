#include "mrp/platform/korv/LogSinks.h"

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/korv/TimeOfDay.h"

#include <cstdio>
#include <sys/syslog.h>

namespace Korv {

namespace {

std::string suppressedText( LogHandle const & handle ) {
   return format( "%llu messages before this one were held back",
                  static_cast< unsigned long long >( handle.suppressed() ) );
}

void toStandardError( LogHandle const & handle, std::string const & text ) {
   std::fprintf( stderr, "%s %s: %s\n", timeOfDayText( timeOfDay() ).c_str(), handle.name(),
                 text.c_str() );
}

void toSyslog( LogHandle const & handle, std::string const & text ) {
   ::syslog( static_cast< int >( handle.severity() & LOG_PRIMASK ), "%s: %s", handle.name(),
             text.c_str() );
}

void withSuppressed( LogSink sink, LogHandle const & handle, std::string const & text ) {
   if ( handle.suppressed() ) {
      sink( handle, suppressedText( handle ) );
   }
   sink( handle, text );
}

} // namespace

void logToStandardError( LogHandle const & handle, std::string const & text ) {
   withSuppressed( toStandardError, handle, text );
}

void logToSyslog( LogHandle const & handle, std::string const & text ) {
   withSuppressed( toSyslog, handle, text );
}

} // namespace Korv
