// `mrp run` without its platform: a participant on whatever host it is given.
#pragma once

#include "mrp/frame/MrpSm.h"
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/platform/mirel/HostEntities.h"

#include "command/run/DeclaringLib.h"
#include "command/run/RunLines.h"
#include "command/run/RunSettings.h"

namespace Command {

// Takes part from when it is made until it is stopped; one that ends without has withdrawn nothing.
// Neither the host nor the stream is its own. Needs the process's activity manager, from whose
// time on it counts.
class RunAgent {
 public:
   // `outputClosed` as RunLines calls it.
   RunAgent( RunSettings const & settings, Mirel::HostEntities const & host, std::ostream & out,
             std::function< void() > outputClosed = {} );
   RunAgent( RunAgent const & ) = delete;
   RunAgent & operator=( RunAgent const & ) = delete;

   // Withdraws what is declared; it has been sent when this returns.
   void stop();
   void showAttributes() { lines_.writeAttributes( *sm_ ); }

   // What it publishes, for an observer and for a scrape.
   Mrp::AttrLogMounts::Adapters mirror( Korv::NboAttrLog::Output & output ) const;
   std::string metrics() const;

 private:
   RunLines lines_;
   Korv::Ptr< Mrp::MrpConfig > config_;
   Korv::Ptr< DeclaringLib > lib_;
   Korv::Ptr< Mrp::MrpSm > sm_; // ends before its lib
};

} // namespace Command
