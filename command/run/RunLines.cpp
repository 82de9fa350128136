#include "command/run/RunLines.h"

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/korv/Format.h"

#include "command/report/Words.h"

#include <cmath>

namespace Command {

RunLines::RunLines( Mrp::MrpApplication application, bool json, std::ostream & out )
   : application_( application ), json_( json ), out_( out ), start_( Korv::now() ) {}

// To a microsecond, so that no digits come out that mean nothing.
Korv::Seconds RunLines::sinceStart( Korv::Seconds time ) const {
   return std::round( ( time - start_ ) * 1e6 ) / 1e6;
}

void RunLines::writeIndication( Happening indication ) {
   indication.time = sinceStart( indication.time );
   if ( json_ ) {
      writeIndicationLine( indication, out_ );
   } else {
      bool const isJoin = indication.kind == Happening::Kind::join;
      // A leave has no event of its own: it comes of a timer.
      out_ << Korv::format( "%10.3f  %-15s  %-5s  ", indication.time,
                            indication.intfId.stringValue().c_str(), isJoin ? "join" : "leave" )
           << typeWord( application_, indication.attributeType ) << ' '
           << sentence( valueFields( application_, indication.attributeType, indication.bytes ),
                        isJoin ? eventWord( indication.attributeEvent ) : "" )
           << '\n';
   }
   out_.flush();
}

void RunLines::writeAttributes( Mrp::MrpSm const & sm ) {
   Report report;
   report.application = application_;
   addAttributes( report, sm );
   if ( json_ ) {
      writeAttributesLine( report, sinceStart( Korv::now() ), out_ );
   } else {
      Command::writeAttributes( report, out_ );
      out_ << '\n';
   }
   out_.flush();
}

} // namespace Command
