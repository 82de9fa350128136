#include "command/Observation.h"

#include "mrp/observability/Logs.h"
#include "mrp/observability/TraceSetting.h"
#include "mrp/platform/korv/LogSinks.h"
#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"

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

} // namespace

Observation::Observation( RunSettings const & settings ) {
   if ( !settings.trace.empty() ) {
      try {
         Mrp::traceLevelsAre( settings.trace );
      } catch ( Korv::RangeException const & error ) {
         throw CommandError( std::string( "trace: " ) + error.what() );
      }
   }
   if ( !settings.ring.empty() ) {
      try {
         ring_.emplace( settings.ring );
      } catch ( std::runtime_error const & error ) {
         throw CommandError( std::string( "ring: " ) + error.what() );
      }
      Sornlog::fileIs( &*ring_ );
   }
   Korv::logSinkIs( sinkOf( settings.log ) );
}

Observation::~Observation() {
   Korv::logSinkIs( nullptr );
   Sornlog::fileIs( nullptr );
}

} // namespace Command
