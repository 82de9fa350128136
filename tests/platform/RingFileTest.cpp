// The ring buffer's file, as it is read back, also after a process that ended in the middle.
#include "mrp/platform/sornlog/RingFile.h"

#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/sornlog/RingReader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace Sornlog {
namespace {

using namespace Korv;
using ::testing::ElementsAre;
using Bytes = std::vector< U8 >;

constexpr Site everyday{ 8, "on % at ", "pi" };
constexpr Site all{ 4, "all: ", "icpb" };

std::vector< std::string > linesOf( RingContents const & ring ) {
   std::vector< std::string > lines;
   for ( RingRecord const & record : ring.records ) {
      lines.push_back( text( ring, record ) );
   }
   return lines;
}

class RingFileTest : public ::testing::Test {
 protected:
   RingFileTest() { std::filesystem::create_directory( directory_ ); }
   ~RingFileTest() override {
      fileIs( nullptr );
      std::filesystem::remove_all( directory_ );
   }

   void open( U32 recordsPerRing ) {
      fileIs( nullptr );
      file_.reset(); // before another may write it
      fileIs( &file_.emplace( path_, recordsPerRing ) );
   }
   static Bytes bytesOf( std::string const & path ) {
      std::ifstream in( path, std::ios::binary );
      return Bytes( std::istreambuf_iterator< char >( in ), {} );
   }
   RingContents contents() const { return readRing( bytesOf( path_ ) ); }

   std::filesystem::path directory_ =
      std::filesystem::temp_directory_path() / ( "mrp-ring-" + std::to_string( ::getpid() ) );
   std::string path_ = directory_ / "ring";
   std::optional< RingFile > file_;
};

TEST_F( RingFileTest, TheLatestOfEachLevelComeBackInOrderOfTime ) {
   open( 3 );
   log( all, -2147483647 - 1, U8{ 255 }, "", true );
   for ( int i = 1; i <= 7; ++i ) {
      log( everyday, "eth0", i );
   }
   log( all, 7, U8{ 0 }, std::string( "\x1b[31m\xff" ), false );
   std::string const fits( 32, 'a' ), tooLong( 33, 'b' );
   log( everyday, fits, 8 );
   log( everyday, tooLong, 9 );
   RingContents const ring = contents();
   EXPECT_THAT( linesOf( ring ),
                ElementsAre( "all: -2147483648, 255, , true", "on eth0 at 7",
                             "all: 7, 0, \\x1b[31m\\xff, false", "on " + fits + " at 8",
                             "on " + tooLong.substr( 1 ) + "... at 9" ) );
   EXPECT_EQ( ring.process, static_cast< U32 >( ::getpid() ) );
   EXPECT_LT( ring.records.back().time - ring.started, 60'000'000'000u );
}

TEST_F( RingFileTest, SitesWithoutASlotAreCounted ) {
   open( 200 );
   std::deque< Site > sites;
   for ( U32 i = 0; i < Layout::siteSlots + 2; ++i ) {
      log( sites.emplace_back( Site{ 8, "site ", "i" } ), static_cast< S32 >( i ) );
   }
   EXPECT_EQ( contents().lost, 2u );
   EXPECT_EQ( linesOf( contents() ).back(), "site 127" );
}

// Whatever the process was doing, all but the record at hand can be read.
TEST_F( RingFileTest, SurvivesAKilledProcess ) {
   constexpr U32 perRing = 64;
   for ( int round = 0; round < 20; ++round ) {
      pid_t const child = ::fork();
      if ( child == 0 ) {
         open( perRing );
         for ( int i = 0;; ++i ) {
            log( everyday, i % 2 ? "eth0" : "a longer name", i );
         }
      }
      auto const isFull = [&] {
         Bytes const now = bytesOf( path_ );
         return isRing( now ) && readRing( now ).process == static_cast< U32 >( child ) &&
                readRing( now ).records.size() + 1 >= perRing;
      };
      while ( !isFull() ) {
      }
      EXPECT_EQ( contents().damaged, 0u ) << "while it is written";
      ::kill( child, SIGKILL );
      ::waitpid( child, nullptr, 0 );
      RingContents const ring = contents();
      EXPECT_EQ( ring.damaged, 0u );
      EXPECT_LE( ring.unfinished, 1u );
      EXPECT_EQ( ring.records.size() + ring.unfinished, perRing );
      RingRecord const & last = ring.records.back();
      EXPECT_EQ( last.sequence - ring.records.front().sequence + 1, ring.records.size() );
      EXPECT_EQ( last.arguments.at( 1 ).number + 1, static_cast< S32 >( last.sequence ) );
   }
}

TEST_F( RingFileTest, ARestartKeepsWhatWasThereAndWhatIsNoRingFileIsLeftAlone ) {
   open( 4 );
   EXPECT_THROW( RingFile{ path_ }, std::runtime_error ) << "while another process writes it";
   log( everyday, "eth0", 1 );
   open( 4 );
   EXPECT_THAT( linesOf( contents() ), ElementsAre() );
   EXPECT_THAT( linesOf( readRing( bytesOf( path_ + ".old" ) ) ), ElementsAre( "on eth0 at 1" ) );

   file_.reset();
   for ( char const * const name : { "", ".new", ".old" } ) {
      std::string const at = path_ + name;
      std::filesystem::remove( at );
      std::ofstream( at ) << std::string( 5000, '\0' ) << "precious";
      EXPECT_THROW( RingFile{ path_ }, std::runtime_error ) << name;
      EXPECT_EQ( bytesOf( at ).size(), 5008u );
      std::filesystem::resize_file( at, 5000 ); // as it is before its header is written
      open( 4 );
      file_.reset();
   }
}

// A file that is changed before it is read.
class RingReaderTest : public RingFileTest {
 protected:
   RingReaderTest() {
      open( 1 );
      log( everyday, "eth0", 1 );
      log( all, 258, U8{ 1 }, "x", true );
      bytes_ = bytesOf( path_ );
   }
   template < class T >
   T & at( std::size_t place ) {
      return *reinterpret_cast< T * >( bytes_.data() + place );
   }
   Layout::Header & header() { return at< Layout::Header >( 0 ); }
   Layout::Site & site( std::size_t number ) {
      return at< Layout::Site >( Layout::sitesAt + number * sizeof( Layout::Site ) );
   }
   Layout::Record & record( std::size_t level ) {
      return at< Layout::Record >( Layout::recordsAt + level * sizeof( Layout::Record ) );
   }

   Bytes bytes_;
};

TEST_F( RingReaderTest, TellsTornAndDamagedRecordsApartAndVersions ) {
   ++record( 8 ).echo;
   EXPECT_EQ( readRing( bytes_ ).unfinished, 1u );
   EXPECT_THAT( linesOf( readRing( bytes_ ) ), ElementsAre( "all: 258, 1, x, true" ) );
   record( 4 ).argumentBytes = static_cast< U16 >( sizeof record( 4 ).arguments + 1 );
   EXPECT_EQ( readRing( bytes_ ).damaged, 1u );
   header().recordsPerRing = header().sites = ~0u; // as many as the file has
   EXPECT_TRUE( readRing( bytes_ ).records.empty() );
   header().version = 2;
   try {
      readRing( bytes_ );
      ADD_FAILURE();
   } catch ( RingError const & error ) {
      EXPECT_STREQ( error.what(), "it is a ring file of version 2, and not 1" );
   }
}

TEST_F( RingReaderTest, ReadsTheOtherByteOrder ) {
   auto const swap = []( auto &... number ) { ( ( number = byteSwapped( number ) ), ... ); };
   Layout::Header & h = header();
   swap( h.byteOrder, h.version, h.headerBytes, h.siteBytes, h.siteSlots, h.recordBytes, h.rings,
         h.recordsPerRing, h.sites, h.process, h.started, h.lostRecords );
   swap( site( 0 ).messageBytes, site( 1 ).messageBytes );
   for ( Layout::Record * const each : { &record( 8 ), &record( 4 ) } ) {
      swap( each->sequence, each->time, each->site, each->argumentBytes, each->echo );
   }
   std::reverse( record( 4 ).arguments, record( 4 ).arguments + 4 ); // the 258
   std::reverse( record( 8 ).arguments + 5, record( 8 ).arguments + 9 );
   EXPECT_THAT( linesOf( readRing( bytes_ ) ),
                ElementsAre( "on eth0 at 1", "all: 258, 1, x, true" ) );
}

} // namespace
} // namespace Sornlog
