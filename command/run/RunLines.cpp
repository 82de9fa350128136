#include "command/run/RunLines.h"

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/korv/Format.h"

#include "command/report/Words.h"

#include <cmath>
#include <sstream>

namespace Command {

RunLines::RunLines( Mrp::MrpApplication application, bool json, std::ostream & out,
                    std::function< void() > outputClosed )
   : application_( application ), json_( json ), start_( Korv::now() ),
     output_(
        out, [this]( std::size_t lines ) { return missingLine( lines ); },
        std::move( outputClosed ) ) {}

// To a microsecond, so that no digits come out that mean nothing.
Korv::Seconds RunLines::sinceStart( Korv::Seconds time ) const {
   return std::round( ( time - start_ ) * 1e6 ) / 1e6;
}

void RunLines::writeIndication( Happening indication ) {
   std::ostringstream out;
   indication.time = sinceStart( indication.time );
   if ( json_ ) {
      writeIndicationLine( indication, out );
   } else {
      bool const isJoin = indication.kind == Happening::Kind::join;
      // A leave has no event of its own: it comes of a timer.
      out << Korv::format( "%10.3f  %-15s  %-5s  ", indication.time,
                           indication.intfId.stringValue().c_str(), isJoin ? "join" : "leave" )
          << typeWord( application_, indication.attributeType ) << ' '
          << sentence( valueFields( application_, indication.attributeType, indication.bytes ),
                       isJoin ? eventWord( indication.attributeEvent ) : "" )
          << '\n';
   }
   output_.print( out.str() );
}

void RunLines::writeAttributes( Mrp::MrpSm const & sm ) {
   std::ostringstream out;
   Report report;
   report.application = application_;
   addAttributes( report, sm );
   if ( json_ ) {
      writeAttributesLine( report, sinceStart( Korv::now() ), out );
   } else {
      Command::writeAttributes( report, out );
      out << '\n';
   }
   output_.print( out.str() );
}

std::string RunLines::missingLine( std::size_t lines ) const {
   Korv::Seconds const time = sinceStart( Korv::now() );
   if ( json_ ) {
      std::ostringstream out;
      writeMissingLine( lines, time, out );
      return out.str();
   }
   return Korv::format( "%10.3f  %zu lines are missing here: nobody read them\n", time, lines );
}

} // namespace Command
