// Where log messages can go without a callback of one's own: `logSinkIs( logToSyslog )`.
#pragma once

#include "mrp/platform/korv/Log.h"

namespace Korv {

// A line with the time of day and the handle, as "2026-03-01 12:00:00.123 MRP_JOIN: ...".
void logToStandardError( LogHandle const & handle, std::string const & text );
// With the handle in front and its severity as the priority, 6 being informational in both.
void logToSyslog( LogHandle const & handle, std::string const & text );

} // namespace Korv
