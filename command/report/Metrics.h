// What a participant publishes, in the text exposition format of Prometheus.
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/receive/MrpCounters.h"
#include "mrp/topology/MrpConfig.h"

#include <string>

namespace Command {

// The entities may be the participant's own or an observer's copies. Attributes are counted by
// state: the number of series grows with interfaces, and not with VLANs or streams.
std::string metricsText( Mrp::MrpApplication application, Mrp::MrpStatus const & status,
                         Mrp::MrpCounters const & counters, Mrp::MrpConfig const & config );

} // namespace Command
