// What `mrp run` prints: each line when it happens, at once.
#pragma once

#include "command/report/Report.h"
#include "command/report/Timeline.h"

#include <ostream>

namespace Command {

// Times are counted from when it is made. A line of text, or of JSON, for each.
class RunLines {
 public:
   RunLines( Mrp::MrpApplication application, bool json, std::ostream & out );

   void writeIndication( Happening indication );
   // All attributes of the participant, as they stand: tables, or one line of JSON.
   void writeAttributes( Mrp::MrpSm const & sm );
   // Whoever reads has gone.
   bool isClosed() const { return !out_; }

 private:
   Korv::Seconds sinceStart( Korv::Seconds time ) const;

   Mrp::MrpApplication application_;
   bool json_;
   std::ostream & out_;
   Korv::Seconds start_;
};

} // namespace Command
