// Seeds of the ring file's fuzzer: changes of a good file, three bytes each.
#include "mrp/platform/sornlog/RingLayout.h"

#include "tests/fuzz/seeds/Corpus.h"

namespace Fuzz {

using namespace Sornlog;

void writeRingFiles( Corpus const & corpus ) {
   using TestSupport::Bytes;
   using TestSupport::U8;
   auto const changed = []( std::size_t at, U8 byte ) {
      return Bytes{ static_cast< U8 >( at >> 8 ), static_cast< U8 >( at ), byte };
   };
   auto const add = [&]( char const * name, std::size_t at, U8 byte ) {
      corpus.add( name, changed( at, byte ) );
   };
   using Layout::Header;
   using Layout::Record;
   using Layout::Site;
   add( "magic", offsetof( Header, magic ), 'X' );
   add( "byte-order", offsetof( Header, byteOrder ), 1 );
   add( "version", offsetof( Header, version ), 2 );
   add( "record-bytes", offsetof( Header, recordBytes ), 0 );
   add( "records-per-ring", offsetof( Header, recordsPerRing ) + 3, 255 );
   add( "sites-over", offsetof( Header, sites ) + 1, 255 );
   add( "sites-under", offsetof( Header, sites ), 0 );
   add( "lost", offsetof( Header, lostRecords ), 9 );
   add( "level-of-a-site", Layout::sitesAt + offsetof( Site, level ), 99 );
   add( "codes-over", Layout::sitesAt + offsetof( Site, codeCount ), 200 );
   add( "unknown-code", Layout::sitesAt + offsetof( Site, codes ), 'z' );
   add( "message-over", Layout::sitesAt + offsetof( Site, messageBytes ), 255 );
   add( "control-in-message", Layout::sitesAt + offsetof( Site, message ), 27 );
   add( "unfinished", Layout::recordsAt + offsetof( Record, echo ), 77 );
   add( "empty-record", Layout::recordsAt + offsetof( Record, sequence ), 0 );
   add( "site-over", Layout::recordsAt + offsetof( Record, site ), 120 );
   add( "arguments-over", Layout::recordsAt + offsetof( Record, argumentBytes ), 255 );
   add( "arguments-under", Layout::recordsAt + offsetof( Record, argumentBytes ), 1 );
   add( "long-text", Layout::recordsAt + offsetof( Record, arguments ), 33 );
   Bytes cut = changed( 0, 'S' );
   cut.push_back( 40 );
   corpus.add( "cut", cut );
}

} // namespace Fuzz
