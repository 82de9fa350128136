#include "command/run/Observation.h"

#include "mrp/observability/Logs.h"
#include "mrp/observability/Trace.h"
#include "mrp/observability/TraceSetting.h"
#include "mrp/platform/korv/LogSinks.h"
#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"

#include <cstdlib>
#include <sys/syslog.h>

namespace Command {

namespace {

void errorsToStandardError( Korv::LogHandle const & handle, std::string const & text ) {
   if ( &handle == &Mrp::MRP_ERROR ) {
      Korv::logToStandardError( handle, text );
   }
}

Korv::LogSink sinkOf( LogTarget target ) {
   switch ( target ) {
   case LogTarget::errors: return errorsToStandardError;
   case LogTarget::standardError: return Korv::logToStandardError;
   case LogTarget::syslog: return Korv::logToSyslog;
   case LogTarget::none: break;
   }
   return nullptr;
}

void traceLevelsAre( std::string const & levels ) {
   try {
      Mrp::traceLevelsAre( levels );
   } catch ( Korv::RangeException const & error ) {
      throw CommandError( std::string( "trace: " ) + error.what() );
   }
}

} // namespace

Observation::Observation( RunSettings const & settings ) {
   if ( !settings.trace.empty() ) {
      traceLevelsAre( settings.trace );
   }
   if ( !settings.ring.empty() ) {
      try {
         ring_.emplace( settings.ring );
      } catch ( std::runtime_error const & error ) {
         throw CommandError( std::string( "ring: " ) + error.what() );
      }
      Sornlog::fileIs( &*ring_ );
   }
   if ( settings.log == LogTarget::syslog ) {
      ::openlog( "mrp", LOG_PID, LOG_DAEMON );
   }
   Korv::logSinkIs( sinkOf( settings.log ) );
}

std::string Observation::switchTraces( std::string const & levels ) {
   if ( Mrp::mrpTrace.levels() != 0 ) {
      Mrp::mrpTrace.levelsIs( 0 );
      return {};
   }
   char const * const environment = std::getenv( "MRP_TRACE" );
   std::string on = environment && *environment ? environment : "Mrp/2-8";
   on = levels.empty() ? on : levels;
   traceLevelsAre( on );
   return on;
}

Observation::~Observation() {
   Korv::logSinkIs( nullptr );
   Sornlog::fileIs( nullptr );
}

} // namespace Command
