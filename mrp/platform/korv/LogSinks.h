// Where log messages can go without a callback of one's own: `logSinkIs( logToSyslog )`.
#pragma once

#include "mrp/platform/korv/Log.h"

namespace Korv {

// A line with the time of day and the handle, as "2026-03-01 12:00:00.123 MRP_JOIN: ...".
void logToStandardError( LogHandle const & handle, std::string const & text );
// A message with the handle in front. The handle's severity is its priority: syslog has the same
// numbers.
void logToSyslog( LogHandle const & handle, std::string const & text );

} // namespace Korv
