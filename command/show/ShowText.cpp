#include "command/show/ShowText.h"

#include "mrp/platform/korv/Format.h"

#include "command/report/AttributeRows.h"
#include "command/report/Table.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>

namespace Command {

namespace {

// Three digits behind the point, as far as they say something.
std::string secondsWord( Korv::Seconds seconds ) {
   std::string text = Korv::format( "%.3f", seconds );
   text.erase( text.find_last_not_of( '0' ) + 1 );
   text.erase( text.find_last_not_of( '.' ) + 1 );
   return text + " s";
}

constexpr auto heading = ShowLine::Kind::heading;

void addTable( ShowLines & lines, Table const & table ) {
   std::stringstream text;
   table.write( text );
   bool isFirst = true;
   for ( std::string line; std::getline( text, line ); isFirst = false ) {
      lines.push_back( { line, isFirst ? heading : ShowLine::Kind::plain } );
   }
}

// First, the lines about the participant as a whole.

struct CounterWord {
   std::string_view name;
   char const * line;
   char const * word;
};
// Counters that are not listed here count as errors, under their own names.
constexpr std::array counterWords{
   CounterWord{ "numOfPktsProcessed", "frames", "heard" },
   CounterWord{ "numOfPktsTransmitted", "frames", "sent" },
   CounterWord{ "numOfJoinIndications", "indications", "joins" },
   CounterWord{ "numOfLeaveIndications", "indications", "leaves" },
   CounterWord{ "numOfMalformedPkts", "errors", "malformed" },
   CounterWord{ "numOfIncorrectPduVersion", "errors", "of another protocol version" },
   CounterWord{ "numOfUnknownAttributeType", "errors", "of unknown types" },
   CounterWord{ "numOfIncorrectDmac", "errors", "to another address" },
   CounterWord{ "numOfIncorrectEtype", "errors", "of another EtherType" } };

void addLabelled( ShowLines & lines, std::string label, std::string const & text ) {
   label.resize( 13, ' ' );
   lines.push_back( { label + text } );
}

void addCounters( ShowLines & lines, ShowView const & view ) {
   std::map< std::string, std::string > texts;
   for ( auto const & [name, value] : view.counters ) {
      auto const known = std::ranges::find( counterWords, name, &CounterWord::name );
      bool const isKnown = known != counterWords.end();
      std::string const line = isKnown ? known->line : "errors";
      if ( line != "errors" || value != 0 ) {
         std::string & text = texts[line];
         text += ( text.empty() ? "" : ", " ) + std::to_string( value ) + " " +
                 ( isKnown ? known->word : name );
      }
   }
   texts.try_emplace( "errors", "none" );
   for ( auto const * const line : { "frames", "indications", "errors" } ) {
      addLabelled( lines, line, texts[line] );
   }
}

void addParticipant( ShowLines & lines, ShowView const & view ) {
   std::string times =
      "leave " + secondsWord( view.leaveTime ) + ", LeaveAll " + secondsWord( view.leaveAllTime );
   // Exactly this one stands for the leave time.
   if ( view.txLeaveAllExpiryTime != 0.6 ) {
      times += ", leave after our own LeaveAll " + secondsWord( view.txLeaveAllExpiryTime );
   }
   addLabelled( lines, "timers", times + ( view.timersEnabled ? "" : "; switched off" ) );
   addLabelled( lines, "flooding", view.mrpFlooding ? "on" : "off" );
   addCounters( lines, view );
}

// Then its interfaces.

void addInterfaces( ShowLines & lines, ShowView const & view ) {
   Table types( { "interface", "type", "declared", "registered", "leaving", "LeaveAll period" } );
   Table overrides( { "interface", "leave", "LeaveAll" } );
   for ( auto const & interface : view.interfaces ) {
      for ( auto const & type : interface.types ) {
         types.add( { interface.name, typeWord( view.application, type.attributeType ),
                      std::to_string( type.declared ), std::to_string( type.registered ),
                      std::to_string( type.leaving ),
                      type.leaveAllPeriod ? secondsWord( *type.leaveAllPeriod ) : "" } );
      }
      if ( interface.ownLeaveTime || interface.ownLeaveAllTime ) {
         overrides.add(
            { interface.name, interface.ownLeaveTime ? secondsWord( interface.leaveTime ) : "",
              interface.ownLeaveAllTime ? secondsWord( interface.leaveAllTime ) : "" } );
      }
   }
   for ( Table const & table : { types, overrides } ) {
      if ( !table.empty() ) {
         lines.push_back( {} );
         addTable( lines, table );
      }
   }
}

// Then its attributes.

// The rows of one type, each with the same headings: the first columns are always there, of the
// others those for which there is room.
class AttributeTable {
 public:
   explicit AttributeTable( Fields const & fields ) : fields_( fields ) {}

   void add( AttributeRow const & row, Fields const & fields ) {
      rows_.push_back( { row.first->interface, fields.front().text,
                         stateWord( row.first->applicantState ),
                         stateWord( row.first->registrarState ) } );
      for ( std::size_t i = 1; i < fields.size(); ++i ) {
         rows_.back().push_back( fields[i].text );
      }
   }

   void write( ShowLines & lines, std::size_t width ) const {
      Table::Row headings{ "interface", fields_.front().heading, "app", "reg" };
      for ( std::size_t i = 1; i < fields_.size(); ++i ) {
         headings.push_back( fields_[i].heading );
      }
      std::size_t const columns = columnsIn( width, headings );
      auto const firstOf = [&]( Table::Row row ) {
         row.resize( columns );
         return row;
      };
      Table table( firstOf( headings ) );
      for ( Table::Row const & row : rows_ ) {
         table.add( firstOf( row ) );
      }
      ShowLines written;
      addTable( written, table );
      lines.push_back( written.front() );
      for ( std::size_t i = 0; i < rows_.size(); ++i ) {
         lines.push_back( written[i + 1] );
         addRest( lines, headings, rows_[i], columns, width );
      }
   }

 private:
   static constexpr std::size_t always = 4;

   std::size_t columnsIn( std::size_t width, Table::Row const & headings ) const {
      std::size_t used = 0;
      for ( std::size_t column = 0; column < headings.size(); ++column ) {
         std::size_t widest = headings[column].size();
         for ( Table::Row const & row : rows_ ) {
            widest = std::max( widest, row[column].size() );
         }
         used += widest + ( column > 0 ? 2 : 0 );
         if ( used > width && column >= always ) {
            return column;
         }
      }
      return headings.size();
   }

   // The fields for which there was no column.
   static void addRest( ShowLines & lines, Table::Row const & headings, Table::Row const & row,
                        std::size_t columns, std::size_t width ) {
      std::string const indent( 4, ' ' );
      std::string line;
      for ( std::size_t i = columns; i < row.size(); ++i ) {
         std::string const words = headings[i] + " " + row[i];
         if ( !line.empty() && line.size() + 2 + words.size() >= width ) {
            lines.push_back( { line + ',' } );
            line.clear();
         }
         line += ( line.empty() ? indent : ", " ) + words;
      }
      if ( !line.empty() ) {
         lines.push_back( { line } );
      }
   }

   Fields fields_;
   std::vector< Table::Row > rows_;
};

void addAttributes( ShowLines & lines, ShowView const & view, std::size_t width ) {
   std::map< std::pair< Korv::U8, Table::Row >, AttributeTable > tables; // by type and headings
   for ( AttributeRow const & row : attributeRows( view.application, view.attributes ) ) {
      Fields fields = row.fields;
      if ( fields.front().heading == "value" ) { // which names nothing
         fields.insert( fields.begin(), { "key", std::to_string( row.first->key ), true } );
      }
      Table::Row headings;
      for ( Field const & field : fields ) {
         headings.push_back( field.heading );
      }
      tables.try_emplace( { row.first->attributeType, headings }, fields )
         .first->second.add( row, fields );
   }
   for ( auto const & [key, table] : tables ) {
      lines.push_back( {} );
      if ( view.application != Mrp::MVRP ) { // which has one type
         lines.push_back( { typeWord( view.application, key.first ), heading } );
      }
      table.write( lines, width );
   }
   if ( tables.empty() ) {
      lines.push_back( {} );
      lines.push_back( { "No attributes." } );
   }
}

} // namespace

ShowLines showLines( ShowStream const & stream, std::size_t width ) {
   std::string const address =
      stream.address + ( stream.connected ? "" : ": not connected, trying again" );
   // On a line of its own, as lines are cut where the screen ends.
   auto const addProblem = [&]( ShowLines & lines ) {
      if ( !stream.connected && !stream.problem.empty() ) {
         addLabelled( lines, "problem", stream.problem );
      }
   };
   ShowLines lines;
   if ( !stream.isKnown ) {
      lines.push_back( { address + ( stream.connected ? ": waiting" : "" ), heading } );
      addProblem( lines );
      return lines;
   }
   for ( ShowView const & view : stream.views ) {
      if ( !lines.empty() ) {
         lines.push_back( {} );
      }
      bool const isThere = view.application != Mrp::InvalidApplication;
      lines.push_back(
         { ( isThere ? Mrp::stringValue( view.application ) + " at " : "no application at " ) +
              address,
           heading } );
      addProblem( lines );
      addParticipant( lines, view );
      addInterfaces( lines, view );
      addAttributes( lines, view, width );
   }
   return lines;
}

void writeShowText( std::span< ShowStream const > streams, std::size_t width, std::ostream & out ) {
   for ( ShowStream const & stream : streams ) {
      out << ( &stream == streams.data() ? "" : "\n" );
      for ( ShowLine const & line : showLines( stream, width ) ) {
         out << line.text << '\n';
      }
   }
}

} // namespace Command
