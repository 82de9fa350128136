// What people see of a run.
#include "mrp/platform/korv/Format.h"

#include "command/report/AttributeRows.h"
#include "command/report/FrameWords.h"
#include "command/report/Report.h"
#include "command/report/Table.h"
#include "command/report/Words.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace Command {

namespace {

char const * kindWord( Happening::Kind kind ) {
   switch ( kind ) {
   case Happening::Kind::heard: return "heard";
   case Happening::Kind::said: return "said";
   case Happening::Kind::join: return "join";
   case Happening::Kind::leave: return "leave";
   }
   return "";
}

bool isIndication( Happening const & happening ) {
   return happening.kind == Happening::Kind::join || happening.kind == Happening::Kind::leave;
}

// Whether one line can tell of both: indications of values that follow on each other.
bool goesOn( Mrp::MrpApplication application, Happening const & last, Happening const & next ) {
   return isIndication( last ) && next.kind == last.kind && next.time == last.time &&
          next.intfId == last.intfId && next.attributeType == last.attributeType &&
          ( next.kind == Happening::Kind::leave || next.attributeEvent == last.attributeEvent ) &&
          nextValue( application, last.attributeType, last.bytes ) == next.bytes;
}

std::string indicationWords( Mrp::MrpApplication application, Happening const & first,
                             Happening const & last ) {
   // A leave has no event of its own: it comes of a timer.
   std::string const event =
      first.kind == Happening::Kind::join ? eventWord( first.attributeEvent ) : "";
   return typeWord( application, first.attributeType ) + " " +
          shortSentence( rangeFields( application, first.attributeType, first.bytes, last.bytes ),
                         event );
}

void writeTimeline( Report const & report, std::ostream & out ) {
   std::size_t nameWidth = 0;
   for ( auto const & interface : report.interfaces ) {
      nameWidth = std::max( nameWidth, interface.name.size() );
   }
   bool const inMicroseconds = std::ranges::all_of( report.timeline, []( auto const & happening ) {
      return std::llround( happening.time * 1e9 ) % 1000 == 0;
   } );
   Timeline const & timeline = report.timeline;
   for ( std::size_t i = 0; i < timeline.size(); ++i ) {
      Happening const & first = timeline[i];
      while ( i + 1 < timeline.size() &&
              goesOn( report.application, timeline[i], timeline[i + 1] ) ) {
         ++i;
      }
      std::string const & name = first.intfId.stringValue();
      out << Korv::format( "%*.*f  ", inMicroseconds ? 11 : 14, inMicroseconds ? 6 : 9, first.time )
          << name << std::string( nameWidth - name.size(), ' ' )
          << Korv::format( "  %-5s  ", kindWord( first.kind ) )
          << ( isIndication( first ) ? indicationWords( report.application, first, timeline[i] )
                                     : frameWords( report.application, first.bytes ) )
          << '\n';
   }
   if ( timeline.empty() ) {
      out << "Nothing was heard and nothing was said.\n";
   }
}

void writeCounts( Report const & report, std::ostream & out ) {
   bool const isAnyHeldBack = std::ranges::any_of(
      report.interfaces, []( auto const & interface ) { return interface.heldBack > 0; } );
   Table::Row headings{ "interface", "heard", "said" };
   if ( isAnyHeldBack ) {
      headings.push_back( "held back by the filter" );
   }
   Table interfaces( headings );
   for ( auto const & interface : report.interfaces ) {
      Table::Row row{ interface.name, std::to_string( interface.received ),
                      std::to_string( interface.transmitted ) };
      if ( isAnyHeldBack ) {
         row.push_back( std::to_string( interface.heldBack ) );
      }
      interfaces.add( row );
   }
   out << '\n';
   interfaces.write( out );

   Table counters( { "counter", "value" } );
   for ( auto const & [name, value] : report.counters ) {
      if ( value != 0 ) {
         counters.add( { name, std::to_string( value ) } );
      }
   }
   if ( !counters.empty() ) {
      out << '\n';
      counters.write( out );
   }
}

} // namespace

// Types have columns of their own, and so their own tables.
void writeAttributes( Report const & report, std::ostream & out ) {
   std::map< std::pair< Korv::U8, Table::Row >, Table > tables; // by type and headings
   bool isAnyPending = false;
   for ( AttributeRow const & attributes :
         attributeRows( report.application, report.attributes ) ) {
      Report::Attribute const & first = *attributes.first;
      Table::Row headings{ "interface", "type" };
      Table::Row row{ first.interface, typeWord( report.application, first.attributeType ) };
      for ( Field const & field : attributes.fields ) {
         headings.push_back( field.heading );
         row.push_back( field.text );
      }
      headings.insert( headings.end(), { "applicant", "registrar" } );
      row.insert( row.end(),
                  { stateWord( first.applicantState ),
                    stateWord( first.registrarState ) + ( first.committed ? "" : " *" ) } );
      isAnyPending |= !first.committed;
      tables.try_emplace( { first.attributeType, headings }, headings ).first->second.add( row );
   }
   for ( auto const & [key, table] : tables ) {
      out << '\n';
      table.write( out );
   }
   if ( tables.empty() ) {
      out << "\nNo attributes.\n";
   }
   if ( isAnyPending ) {
      out << "\n* not in the published database yet\n";
   }
}

void writeText( Report const & report, std::ostream & out ) {
   writeTimeline( report, out );
   if ( report.aborted ) {
      out << "\nHere the engine gave up: " << *report.aborted << '\n';
   }
   writeAttributes( report, out );
   writeCounts( report, out );
}

} // namespace Command
