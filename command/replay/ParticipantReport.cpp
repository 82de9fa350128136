#include "command/replay/ParticipantReport.h"

#include <map>
#include <string_view>

namespace Command {

namespace {

void countFrames( Report & report ) {
   std::map< std::string_view, Report::Interface * > byName;
   for ( auto & interface : report.interfaces ) {
      byName[interface.name] = &interface;
   }
   for ( Happening const & happening : report.timeline ) {
      auto const found = byName.find( happening.intfId.stringValue() );
      if ( found != byName.end() ) {
         found->second->received += happening.kind == Happening::Kind::heard ? 1 : 0;
         found->second->transmitted += happening.kind == Happening::Kind::said ? 1 : 0;
      }
   }
}

} // namespace

Report gatherReport( Participant const & participant ) {
   Report report;
   report.application = participant.settings().application;
   report.timeline = participant.timeline();
   for ( auto const & interface : participant.settings().interfaces ) {
      report.interfaces.push_back(
         { interface.intfId.stringValue(), 0, 0, participant.heldBack( interface.intfId ) } );
   }
   countFrames( report );
   if ( auto const & counters = participant.sm().mrpCounters() ) {
      Korv::forEachScalar( *counters, [&]( char const * name, auto value ) {
         report.counters.emplace_back( name, value );
      } );
   }
   addAttributes( report, participant.sm() );
   return report;
}

} // namespace Command
