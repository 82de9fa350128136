#include "command/RingCommand.h"

#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/TimeOfDay.h"
#include "mrp/platform/korv/TraceLevels.h"
#include "mrp/platform/sornlog/RingReader.h"

#include "command/CommandError.h"
#include "command/report/Json.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

namespace Command {

namespace {

using Sornlog::RingContents;
using Sornlog::RingRecord;

// No more than a ring file can have, and of others no more than it takes to see that.
std::vector< Korv::U8 > contentOf( std::string const & path ) {
   std::ifstream file( path, std::ios::binary );
   std::vector< Korv::U8 > bytes;
   std::array< char, 1 << 16 > chunk;
   std::size_t most = sizeof( Sornlog::Layout::Header );
   while ( file && bytes.size() < most ) {
      std::size_t const wanted = std::min( chunk.size(), most - bytes.size() );
      file.read( chunk.data(), static_cast< std::streamsize >( wanted ) );
      bytes.insert( bytes.end(), chunk.data(), chunk.data() + file.gcount() );
      if ( Sornlog::isRing( bytes ) ) {
         most = Sornlog::Layout::fileBytes( Sornlog::Layout::mostRecordsPerRing );
      }
   }
   if ( !file.eof() && !file.good() ) {
      throw CommandError( path + ": " + std::strerror( errno ) );
   }
   return bytes;
}

RingContents contentsOf( std::string const & path ) {
   try {
      return Sornlog::readRing( contentOf( path ) );
   } catch ( Sornlog::RingError const & error ) {
      throw CommandError( path + ": " + error.what() );
   }
}

Json argumentJson( Sornlog::RingArgument const & argument ) {
   switch ( argument.code ) {
   case 'p': return argument.text;
   case 'b': return argument.number != 0;
   default: return argument.number;
   }
}

Json recordJson( RingContents const & ring, RingRecord const & record ) {
   Json arguments = Json::array();
   for ( auto const & argument : record.arguments ) {
      arguments.push_back( argumentJson( argument ) );
   }
   return { { "sequence", record.sequence },
            { "time", Korv::timeOfDayText( record.time ) },
            { "level", ring.sites[record.site].level },
            { "message", ring.sites[record.site].message },
            { "arguments", std::move( arguments ) },
            { "text", text( ring, record ) } };
}

void writeRingJson( RingContents const & ring, std::ostream & out ) {
   Json records = Json::array();
   for ( RingRecord const & record : ring.records ) {
      records.push_back( recordJson( ring, record ) );
   }
   Json const document{ { "process", ring.process },
                        { "started", Korv::timeOfDayText( ring.started ) },
                        { "unfinished", ring.unfinished },
                        { "damaged", ring.damaged },
                        { "lost", ring.lost },
                        { "records", std::move( records ) } };
   out << jsonText( document, 2 ) << '\n';
}

void writeRingText( RingContents const & ring, std::ostream & out ) {
   out << "process " << ring.process << ", started " << Korv::timeOfDayText( ring.started )
       << "\n\n";
   for ( RingRecord const & record : ring.records ) {
      out << Korv::timeOfDayText( record.time ) << "  " << unsigned{ ring.sites[record.site].level }
          << "  " << text( ring, record ) << '\n';
   }
}

void remark( RingContents const & ring, std::ostream & err ) {
   auto const tell = [&]( Korv::U64 count, char const * what ) {
      if ( count ) {
         err << "mrp: warning: " << count << what << '\n';
      }
   };
   tell( ring.unfinished, " records left out that were being written" );
   tell( ring.lost, " records lost that found no place for their message" );
   tell( ring.damaged, " records left out that no process has written: the file is damaged" );
}

} // namespace

unsigned levelsArgument( std::string const & text ) {
   try {
      return Korv::levelsFromText( text );
   } catch ( Korv::RangeException const & error ) {
      throw CommandError( error.what() );
   }
}

int ring( RingOptions const & options, std::ostream & out, std::ostream & err ) {
   RingContents contents = contentsOf( options.path );
   std::erase_if( contents.records, [&]( RingRecord const & record ) {
      return ( options.levels >> contents.sites[record.site].level & 1u ) == 0;
   } );
   ( options.json ? writeRingJson : writeRingText )( contents, out );
   remark( contents, err );
   return contents.damaged ? 1 : 0;
}

} // namespace Command
