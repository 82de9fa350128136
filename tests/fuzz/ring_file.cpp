// Ring files: any bytes, or a good file with some of its bytes changed. Whatever is read keeps to
// the sizes of the file, is in order, and can be printed.
#include "mrp/platform/sornlog/RingReader.h"

#include "tests/fuzz/script/Check.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using Fuzz::check;
using namespace Sornlog;
using Korv::U8;
using Bytes = std::vector< U8 >;

constexpr Korv::U32 recordsPerRing = 2;

template < class T >
void place( Bytes & bytes, std::size_t at, T const & what ) {
   std::memcpy( bytes.data() + at, &what, sizeof what );
}

// Two messages, and three records of them.
Bytes goodFile() {
   Bytes bytes( Layout::fileBytes( recordsPerRing ) );
   Layout::Header header = Layout::newHeader( recordsPerRing );
   header.sites = 2;
   place( bytes, 0, header );
   place( bytes, Layout::sitesAt, Layout::Site{ 0, 4, 8, "pcib", "a % of %" } );
   place( bytes, Layout::sitesAt + sizeof( Layout::Site ), Layout::Site{ 1, 0, 4, "", "none" } );
   auto const put = [&]( Korv::U64 sequence, std::size_t slot, Layout::Record record ) {
      record.sequence = sequence;
      record.echo = static_cast< Korv::U32 >( sequence );
      place( bytes, Layout::recordsAt + slot * sizeof record, record );
   };
   put( 1, 0, { 0, 1, 0, 9, { 2, 'e', '1', 7, 1, 2, 3, 4, 1 }, 0 } );
   put( 3, 1, { 0, 2, 0, 7, { 0x80, 7, 1, 2, 3, 4, 1 }, 0 } );
   put( 2, recordsPerRing, { 0, 2, 1, 0, {}, 0 } );
   return bytes;
}

// Three bytes a change: where, what.
void change( Bytes & file, U8 const * changes, std::size_t size ) {
   for ( ; size >= 3; changes += 3, size -= 3 ) {
      std::size_t const at = std::size_t{ changes[0] } << 8u | changes[1];
      file[at % file.size()] = changes[2];
   }
}

void read( Bytes const & bytes ) {
   try {
      RingContents const ring = readRing( bytes );
      check( ring.records.size() <= bytes.size() / sizeof( Layout::Record ),
             "records are bounded" );
      check( std::ranges::adjacent_find( ring.records, std::ranges::greater_equal(),
                                         &RingRecord::sequence ) == ring.records.end(),
             "records are in order, each once" );
      for ( RingRecord const & record : ring.records ) {
         std::string const line = text( ring, record );
         check( std::ranges::all_of( line, []( char c ) { return c >= ' ' && c <= '~'; } ),
                "a line prints" );
      }
   } catch ( RingError const & error ) {
      check( error.what()[0] != '\0', "an error has words" );
   }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   static Bytes const good = goodFile();
   read( Bytes( data, data + size ) );
   Bytes changed = good;
   change( changed, data, size );
   if ( size % 3 == 1 ) {
      changed.resize( changed.size() -
                      std::min< std::size_t >( data[size - 1] * 64u, changed.size() ) );
   }
   read( changed );
   // Without a change it is read as it is.
   RingContents const ring = readRing( good );
   check( ring.records.size() == 3 && ring.damaged == 0 && ring.unfinished == 0,
          "a good file is good" );
   return 0;
}
