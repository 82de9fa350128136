// What `mrp run` prints: each line when it happens.
#pragma once

#include "command/report/Report.h"
#include "command/report/Timeline.h"
#include "command/run/RunOutput.h"

namespace Command {

// Times are counted from when it is made. A line of text, or of JSON, for each.
class RunLines {
 public:
   // `outputClosed` is called, from within a notification, when nothing more can be printed.
   RunLines( Mrp::MrpApplication application, bool json, std::ostream & out,
             std::function< void() > outputClosed );

   void writeIndication( Happening indication );
   // All attributes of the participant, as they stand: tables, or one line of JSON.
   void writeAttributes( Mrp::MrpSm const & sm );
   // At the end: what still waits for its reader, as far as he takes it.
   void writeRest() { output_.write(); }

 private:
   Korv::Seconds sinceStart( Korv::Seconds time ) const;
   std::string missingLine( std::size_t lines ) const;

   Mrp::MrpApplication application_;
   bool json_;
   Korv::Seconds start_;
   RunOutput output_;
};

} // namespace Command
