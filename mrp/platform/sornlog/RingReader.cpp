#include "mrp/platform/sornlog/RingReader.h"

#include "mrp/platform/korv/Format.h"
#include "mrp/platform/korv/NetworkOrder.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

namespace Sornlog {

using namespace Korv;

namespace {

// Numbers of a file, which may come from a machine of the other byte order.
class Numbers {
 public:
   explicit Numbers( bool swapped ) : swapped_( swapped ) {}

   template < class T >
   T operator()( T number ) const {
      return swapped_ ? byteSwapped( number ) : number;
   }

 private:
   bool swapped_;
};

template < class T >
T copyOf( std::span< U8 const > bytes ) {
   T copy;
   std::memcpy( &copy, bytes.data(), sizeof copy );
   return copy;
}

Layout::Header checkedHeader( std::span< U8 const > bytes ) {
   if ( !isRing( bytes ) || bytes.size() < sizeof( Layout::Header ) ) {
      throw RingError( "it is no ring file" );
   }
   return copyOf< Layout::Header >( bytes );
}

Numbers numbersOf( Layout::Header const & header ) {
   bool const swapped = header.byteOrder == byteSwapped( Layout::byteOrder );
   if ( !swapped && header.byteOrder != Layout::byteOrder ) {
      throw RingError( "its byte order is none that can be" );
   }
   return Numbers( swapped );
}

// Takes the bytes of a record's arguments apart.
class ArgumentReader {
 public:
   ArgumentReader( Numbers numbers, std::span< U8 const > bytes )
      : numbers_( numbers ), bytes_( bytes ) {}

   bool atEnd() const { return bytes_.empty(); }

   // The next argument, of that code; none if the bytes do not hold one.
   std::optional< RingArgument > next( char code ) {
      RingArgument argument{ code, 0, {}, false };
      bool isThere = false;
      if ( code == 'i' ) {
         if ( auto const number = taken( 4 ) ) {
            argument.number = static_cast< S32 >( numbers_( copyOf< U32 >( *number ) ) );
            isThere = true;
         }
      } else if ( auto const byte = taken( 1 ) ) {
         argument.number = byte->front();
         isThere = code != 'p' || takeText( argument );
      }
      return isThere ? std::optional( std::move( argument ) ) : std::nullopt;
   }

 private:
   std::optional< std::span< U8 const > > taken( std::size_t count ) {
      if ( bytes_.size() < count ) {
         return std::nullopt;
      }
      auto const front = bytes_.first( count );
      bytes_ = bytes_.subspan( count );
      return front;
   }
   bool takeText( RingArgument & argument ) {
      argument.isCut = ( argument.number & Layout::wasLonger ) != 0;
      auto const text = taken( static_cast< std::size_t >( argument.number & ~Layout::wasLonger ) );
      if ( text ) {
         argument.text.assign( text->begin(), text->end() );
         argument.number = 0;
      }
      return text.has_value();
   }

   Numbers numbers_;
   std::span< U8 const > bytes_;
};

class Reader {
 public:
   explicit Reader( std::span< U8 const > bytes )
      : bytes_( bytes ), header_( checkedHeader( bytes ) ), numbers_( numbersOf( header_ ) ) {}

   RingContents read();

 private:
   void checkLayout() const;
   void readSites();
   void readRecord( U32 level, Layout::Record const & record );
   bool readArguments( Layout::Record const & record, RingSite const & site,
                       std::vector< RingArgument > & to ) const;

   std::span< U8 const > bytes_;
   Layout::Header header_;
   Numbers numbers_;
   RingContents ring_;
};

void Reader::checkLayout() const {
   U32 const version = numbers_( header_.version );
   if ( version != Layout::version ) {
      throw RingError(
         format( "it is a ring file of version %u, and not %u", version, Layout::version ) );
   }
   bool const isOurs = numbers_( header_.headerBytes ) == sizeof( Layout::Header ) &&
                       numbers_( header_.siteBytes ) == sizeof( Layout::Site ) &&
                       numbers_( header_.siteSlots ) == Layout::siteSlots &&
                       numbers_( header_.recordBytes ) == sizeof( Layout::Record ) &&
                       numbers_( header_.rings ) == Layout::rings;
   if ( !isOurs || bytes_.size() < Layout::recordsAt ) {
      throw RingError( isOurs ? "it ends within its messages" : "its sizes are not its version's" );
   }
}

void Reader::readSites() {
   U32 const count = std::min( numbers_( header_.sites ), Layout::siteSlots );
   for ( U32 i = 0; i < count; ++i ) {
      auto const site = copyOf< Layout::Site >(
         bytes_.subspan( Layout::sitesAt + i * sizeof( Layout::Site ), sizeof( Layout::Site ) ) );
      std::size_t const codes = std::min< std::size_t >( site.codeCount, sizeof site.codes );
      std::size_t const message =
         std::min< std::size_t >( numbers_( site.messageBytes ), sizeof site.message );
      ring_.sites.push_back(
         { site.level, std::string( site.codes, codes ), std::string( site.message, message ) } );
   }
}

bool Reader::readArguments( Layout::Record const & record, RingSite const & site,
                            std::vector< RingArgument > & to ) const {
   U16 const bytes = numbers_( record.argumentBytes );
   if ( bytes > sizeof record.arguments ) {
      return false;
   }
   ArgumentReader reader( numbers_, { record.arguments, bytes } );
   for ( char const code : site.codes ) {
      if ( reader.atEnd() ) {
         return true; // there was no room for the rest
      }
      auto argument = reader.next( code );
      if ( !argument ) {
         return false;
      }
      to.push_back( std::move( *argument ) );
   }
   return reader.atEnd();
}

void Reader::readRecord( U32 level, Layout::Record const & record ) {
   U64 const sequence = numbers_( record.sequence );
   U32 const echo = numbers_( record.echo );
   if ( sequence == 0 && echo == 0 ) {
      return; // never used
   }
   // A message may be younger than the bytes that were read of its table.
   U16 const site = numbers_( record.site );
   bool const isYoung = site >= ring_.sites.size() && site < Layout::siteSlots;
   if ( sequence == 0 || echo != static_cast< U32 >( sequence ) || isYoung ) {
      ++ring_.unfinished;
      return;
   }
   RingRecord read{ sequence, numbers_( record.time ), site, {} };
   bool const isSound = site < ring_.sites.size() && ring_.sites[site].level == level &&
                        readArguments( record, ring_.sites[site], read.arguments );
   if ( isSound ) {
      ring_.records.push_back( std::move( read ) );
   } else {
      ++ring_.damaged;
   }
}

RingContents Reader::read() {
   checkLayout();
   ring_.process = numbers_( header_.process );
   ring_.started = numbers_( header_.started );
   ring_.lost = numbers_( header_.lostRecords );
   readSites();
   U32 const perRing = numbers_( header_.recordsPerRing );
   auto rest = bytes_.subspan( Layout::recordsAt );
   U64 const count =
      std::min( U64{ Layout::rings } * perRing, U64{ rest.size() / sizeof( Layout::Record ) } );
   for ( U64 i = 0; i < count; ++i ) {
      readRecord( static_cast< U32 >( i / perRing ), copyOf< Layout::Record >( rest ) );
      rest = rest.subspan( sizeof( Layout::Record ) );
   }
   std::ranges::sort( ring_.records, {}, &RingRecord::sequence );
   // One place writes a sequence once.
   auto const isSame = []( RingRecord const & a, RingRecord const & b ) {
      return a.sequence == b.sequence;
   };
   auto const again = std::unique( ring_.records.begin(), ring_.records.end(), isSame );
   ring_.damaged += static_cast< U64 >( ring_.records.end() - again );
   ring_.records.erase( again, ring_.records.end() );
   return std::move( ring_ );
}

std::string printable( std::string const & text ) {
   std::string result;
   for ( char const c : text ) {
      bool const isPrintable = c >= ' ' && c <= '~';
      result += isPrintable ? std::string( 1, c ) : format( "\\x%02x", static_cast< U8 >( c ) );
   }
   return result;
}

} // namespace

bool isRing( std::span< U8 const > bytes ) {
   return bytes.size() >= sizeof Layout::magic &&
          std::memcmp( bytes.data(), Layout::magic, sizeof Layout::magic ) == 0;
}

RingContents readRing( std::span< U8 const > bytes ) { return Reader( bytes ).read(); }

std::string text( RingContents const & ring, RingRecord const & record ) {
   RingSite const & site = ring.sites.at( record.site );
   std::vector< std::string > texts;
   texts.reserve( record.arguments.size() ); // pointers into it must stay
   std::vector< Argument > arguments;
   for ( RingArgument const & argument : record.arguments ) {
      texts.push_back( argument.text + ( argument.isCut ? "..." : "" ) );
      arguments.push_back( { argument.code, argument.number, texts.back().c_str() } );
   }
   return printable(
      text( Site{ site.level, site.message.c_str(), site.codes.c_str() }, arguments ) );
}

} // namespace Sornlog
