#include "mrp/platform/sornlog/RingFile.h"

#include "mrp/platform/korv/RangeException.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <stdexcept>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <time.h>
#include <unistd.h>

namespace Sornlog {

using namespace Korv;

namespace {

[[noreturn]] void refuse( std::string const & path, int error ) {
   throw std::system_error( error, std::generic_category(), path );
}
[[noreturn]] void refuse( std::string const & path, char const * why ) {
   throw std::runtime_error( path + ": " + why );
}

class Opened {
 public:
   Opened( std::string const & path, int flags )
      : number( ::open( path.c_str(), flags | O_CLOEXEC, 0640 ) ) {}
   Opened( Opened const & ) = delete;
   Opened & operator=( Opened const & ) = delete;
   ~Opened() {
      if ( number >= 0 ) {
         ::close( number );
      }
   }
   int number;
};

void lock( std::string const & path, int descriptor ) {
   if ( ::flock( descriptor, LOCK_EX | LOCK_NB ) != 0 ) {
      if ( errno == EWOULDBLOCK ) {
         refuse( path, "another process writes it" );
      }
      refuse( path, errno );
   }
}

bool isRing( int descriptor ) {
   char start[sizeof Layout::magic];
   return ::pread( descriptor, start, sizeof start, 0 ) == ssize_t{ sizeof start } &&
          std::memcmp( start, Layout::magic, sizeof start ) == 0;
}

// Empty, or zeros from end to end: a ring file whose process or machine ended before its header was
// written.
bool isBlank( int descriptor ) {
   std::array< char, 4096 > piece;
   off_t at = 0;
   for ( ssize_t got; ( got = ::pread( descriptor, piece.data(), piece.size(), at ) ) != 0; ) {
      if ( got < 0 || std::any_of( piece.begin(), piece.begin() + got, std::identity() ) ) {
         return false;
      }
      at += got;
   }
   return true;
}
bool isOurs( int descriptor ) { return isRing( descriptor ) || isBlank( descriptor ); }

constexpr int toLook = O_RDONLY | O_NONBLOCK;

// Refuses a file that is there and is none of ours, or is being written.
void refuseForeign( std::string const & path, Opened const & found ) {
   struct stat status {};
   if ( found.number < 0 ? errno != ENOENT : ::fstat( found.number, &status ) != 0 ) {
      refuse( path, errno );
   }
   if ( found.number < 0 ) {
      return;
   }
   if ( !( S_ISREG( status.st_mode ) && isOurs( found.number ) ) ) {
      refuse( path, "it is no ring file, and is left alone" );
   }
   lock( path, found.number );
}

// Makes way for a new file: a ring file that is there gets ".old" behind its name.
void keepOld( std::string const & path ) {
   Opened const old( path, toLook );
   refuseForeign( path, old );
   if ( old.number >= 0 && isRing( old.number ) &&
        std::rename( path.c_str(), ( path + ".old" ).c_str() ) != 0 ) {
      refuse( path, errno );
   }
}

// A new file, locked, of that many zeros.
int makeFile( std::string const & path, std::size_t bytes ) {
   int const descriptor = ::open( path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0640 );
   if ( descriptor < 0 ) {
      refuse( path, errno );
   }
   auto const give = [&]( int error ) {
      ::close( descriptor );
      refuse( path, error );
   };
   if ( ::flock( descriptor, LOCK_EX | LOCK_NB ) != 0 || ::ftruncate( descriptor, 0 ) != 0 ) {
      give( errno );
   }
   if ( int const error = ::posix_fallocate( descriptor, 0, static_cast< off_t >( bytes ) ) ) {
      ::unlink( path.c_str() );
      give( error );
   }
   return descriptor;
}

// The time of day at the kernel's tick, some milliseconds: records are in order by their sequence,
// and this clock costs a few loads.
U64 coarseTime() {
   timespec time;
   ::clock_gettime( CLOCK_REALTIME_COARSE, &time );
   return static_cast< U64 >( time.tv_sec ) * 1'000'000'000 + static_cast< U64 >( time.tv_nsec );
}

template < class T >
void store( T & to, T value, std::memory_order order ) {
   std::atomic_ref< T >( to ).store( value, order );
}

// Writes arguments until the room is used up; what does not fit is left out as a whole.
class ArgumentWriter {
 public:
   explicit ArgumentWriter( Layout::Record & record )
      : start_( record.arguments ), at_( start_ ), end_( start_ + sizeof record.arguments ) {}

   bool put( Argument const & argument ) {
      switch ( argument.code ) {
      case 'p': return putText( argument.text ? argument.text : "" );
      case 'i': return putBytes( &argument.number, sizeof argument.number );
      default: {
         U8 const byte = static_cast< U8 >( argument.number );
         return putBytes( &byte, 1 );
      }
      }
   }
   U16 bytes() const { return static_cast< U16 >( at_ - start_ ); }

 private:
   bool hasRoom( std::size_t bytes ) const {
      return static_cast< std::size_t >( end_ - at_ ) >= bytes;
   }
   bool putBytes( void const * from, std::size_t bytes ) {
      if ( !hasRoom( bytes ) ) {
         return false;
      }
      std::memcpy( at_, from, bytes );
      at_ += bytes;
      return true;
   }
   bool putText( char const * text ) {
      std::size_t const length = ::strnlen( text, Layout::longestText + 1u );
      bool const isCut = length > Layout::longestText;
      U8 const kept = isCut ? Layout::longestText : static_cast< U8 >( length );
      if ( !hasRoom( 1u + kept ) ) {
         return false;
      }
      *at_++ = static_cast< U8 >( kept | ( isCut ? Layout::wasLonger : 0 ) );
      return putBytes( text, kept );
   }

   U8 * start_;
   U8 * at_;
   U8 * end_;
};

Layout::Header newHeader( U32 recordsPerRing ) {
   Layout::Header header = Layout::newHeader( recordsPerRing );
   header.process = static_cast< U32 >( ::getpid() );
   header.started = coarseTime();
   return header;
}

} // namespace

RingFile::RingFile( std::string const & path, U32 recordsPerRing )
   : recordsPerRing_( recordsPerRing ) {
   if ( recordsPerRing == 0 || recordsPerRing > Layout::mostRecordsPerRing ) {
      throwRangeException( "a ring has 1 to 1048576 records" );
   }
   // It gets its name when it is complete.
   std::string const making = path + ".new";
   for ( std::string const & name : { making, path + ".old" } ) {
      refuseForeign( name, Opened( name, toLook ) );
   }
   keepOld( path );
   std::size_t const bytes = Layout::fileBytes( recordsPerRing );
   descriptor_ = makeFile( making, bytes );
   void * const mapped =
      ::mmap( nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0 );
   if ( mapped == MAP_FAILED ) {
      int const error = errno;
      ::close( descriptor_ );
      refuse( path, error );
   }
   header_ = ::new ( mapped ) Layout::Header( newHeader( recordsPerRing ) );
   U8 * const start = static_cast< U8 * >( mapped );
   sites_ = reinterpret_cast< Layout::Site * >( start + Layout::sitesAt );
   records_ = reinterpret_cast< Layout::Record * >( start + Layout::recordsAt );
   if ( std::rename( making.c_str(), path.c_str() ) != 0 ) {
      int const error = errno;
      ::munmap( mapped, bytes );
      ::close( descriptor_ );
      refuse( path, error );
   }
}

RingFile::~RingFile() {
   ::munmap( header_, Layout::fileBytes( recordsPerRing_ ) );
   ::close( descriptor_ );
}

RingFile::Number & RingFile::numberOf( Site const & site ) {
   // Sites are constants of 24 bytes: the lowest bits of their addresses say little.
   std::size_t at = reinterpret_cast< std::uintptr_t >( &site ) / 8 % numberSlots;
   while ( numbers_[at].site && numbers_[at].site != &site ) {
      at = ( at + 1 ) % numberSlots; // there are more slots than sites: it ends
   }
   return numbers_[at];
}

bool RingFile::registerSite( Number & number, Site const & site ) {
   if ( registered_ == Layout::siteSlots ) {
      return false;
   }
   Layout::Site & entry = sites_[registered_];
   entry.level = site.level;
   entry.codeCount =
      static_cast< U8 >( std::min( std::strlen( site.arguments ), sizeof entry.codes ) );
   std::memcpy( entry.codes, site.arguments, entry.codeCount );
   entry.messageBytes =
      static_cast< U16 >( std::min( std::strlen( site.message ), sizeof entry.message ) );
   std::memcpy( entry.message, site.message, entry.messageBytes );
   number = { &site, static_cast< U16 >( registered_ ) };
   ++registered_;
   store( header_->sites, registered_, std::memory_order_release );
   return true;
}

Layout::Record & RingFile::nextRecord( U8 level ) {
   U32 & next = next_[level];
   Layout::Record & record = records_[std::size_t{ level } * recordsPerRing_ + next];
   next = next + 1 == recordsPerRing_ ? 0 : next + 1;
   return record;
}

void RingFile::write( Site const & site, std::span< Argument const > arguments ) {
   if ( site.level >= Layout::rings ) {
      return;
   }
   Number & number = numberOf( site );
   if ( !number.site && !registerSite( number, site ) ) {
      ++header_->lostRecords;
      return;
   }
   Layout::Record & record = nextRecord( site.level );
   ++sequence_;
   store( record.sequence, U64{ 0 }, std::memory_order_relaxed );
   std::atomic_thread_fence( std::memory_order_release );
   record.echo = static_cast< U32 >( sequence_ );
   record.time = coarseTime();
   record.site = number.number;
   ArgumentWriter writer( record );
   for ( Argument const & argument : arguments ) {
      if ( !writer.put( argument ) ) {
         break;
      }
   }
   record.argumentBytes = writer.bytes();
   store( record.sequence, sequence_, std::memory_order_release );
}

} // namespace Sornlog
