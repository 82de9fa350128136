// The ring buffer's file, as it is read back, also after a process that ended in the middle.
#include "mrp/platform/sornlog/RingFile.h"

#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/sornlog/RingReader.h"

#include <gmock/gmock.h>

#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace Sornlog {
namespace {

using namespace Korv;
using ::testing::ElementsAre;
using Bytes = std::vector< U8 >;
using Lines = std::vector< std::string >;

constexpr Site everyday{ 8, "on % at ", "pi" };
constexpr Site all{ 4, "all: ", "icpb" };

class RingFileTest : public ::testing::Test {
 protected:
   RingFileTest() { std::filesystem::create_directory( directory_ ); }
   ~RingFileTest() override {
      fileIs( nullptr );
      std::filesystem::remove_all( directory_ );
   }

   void open( U32 recordsPerRing = 4 ) {
      fileIs( nullptr );
      file_.reset(); // before another may write it
      file_ = std::make_unique< RingFile >( path_, recordsPerRing );
      fileIs( file_.get() );
   }
   Bytes bytes() const {
      std::ifstream in( path_, std::ios::binary );
      return Bytes( std::istreambuf_iterator< char >( in ), {} );
   }
   static Lines linesOf( RingContents const & ring ) {
      Lines lines;
      for ( RingRecord const & record : ring.records ) {
         lines.push_back( text( ring, record ) );
      }
      return lines;
   }
   Lines lines() const { return linesOf( readRing( bytes() ) ); }

   std::filesystem::path directory_ =
      std::filesystem::temp_directory_path() / ( "mrp-ring-" + std::to_string( ::getpid() ) );
   std::string path_ = directory_ / "ring";
   std::unique_ptr< RingFile > file_;
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
   RingContents const ring = readRing( bytes() );
   EXPECT_THAT( linesOf( ring ),
                ElementsAre( "all: -2147483648, 255, , true", "on eth0 at 7",
                             "all: 7, 0, \\x1b[31m\\xff, false", "on " + fits + " at 8",
                             "on " + tooLong.substr( 1 ) + "... at 9" ) );
   EXPECT_EQ( ring.process, static_cast< U32 >( ::getpid() ) );
   EXPECT_EQ( ring.sites.size(), 2u ) << "each is registered once";
   for ( RingRecord const & record : ring.records ) {
      EXPECT_LT( record.time - ring.started, 60'000'000'000u );
   }
}

TEST_F( RingFileTest, SitesWithoutASlotAreCounted ) {
   open( 200 );
   std::deque< Site > sites;
   for ( U32 i = 0; i < Layout::siteSlots + 2; ++i ) {
      log( sites.emplace_back( Site{ 8, "site ", "i" } ), static_cast< S32 >( i ) );
   }
   RingContents const ring = readRing( bytes() );
   EXPECT_EQ( ring.lost, 2u );
   EXPECT_EQ( ring.damaged, 0u );
   EXPECT_EQ( linesOf( ring ).back(), "site 127" );
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
         Bytes const now = bytes();
         return isRing( now ) && readRing( now ).process == static_cast< U32 >( child ) &&
                readRing( now ).records.size() + 1 >= perRing;
      };
      while ( !isFull() ) {
      }
      EXPECT_EQ( readRing( bytes() ).damaged, 0u ) << "while it is written";
      ::kill( child, SIGKILL );
      ::waitpid( child, nullptr, 0 );
      RingContents const ring = readRing( bytes() );
      EXPECT_EQ( ring.damaged, 0u );
      EXPECT_LE( ring.unfinished, 1u );
      EXPECT_EQ( ring.records.size() + ring.unfinished, perRing );
      RingRecord const & last = ring.records.back();
      EXPECT_EQ( last.sequence - ring.records.front().sequence + 1, ring.records.size() );
      EXPECT_EQ( last.arguments.at( 1 ).number + 1, static_cast< S32 >( last.sequence ) );
   }
}

TEST_F( RingFileTest, ARestartKeepsWhatWasThere ) {
   open();
   EXPECT_THROW( RingFile{ path_ }, std::runtime_error ) << "while another process writes it";
   log( everyday, "eth0", 1 );
   open();
   EXPECT_THAT( lines(), ElementsAre() );
   path_ += ".old";
   EXPECT_THAT( lines(), ElementsAre( "on eth0 at 1" ) );
}

TEST_F( RingFileTest, WhatIsNoRingFileIsLeftAlone ) {
   std::ofstream( path_ ) << "precious, and longer than a magic word";
   EXPECT_THROW( RingFile{ path_ }, std::runtime_error );
   EXPECT_EQ( bytes().size(), 38u );
}

class RingReaderTest : public RingFileTest {
 protected:
   RingReaderTest() {
      open( 2 );
      log( everyday, "eth0", 1 );
      log( everyday, "eth1", 2 );
      log( all, 258, U8{ 1 }, "x", true );
      good_ = bytes();
   }
   template < class T >
   T & at( std::size_t place ) {
      return *reinterpret_cast< T * >( good_.data() + place );
   }
   Layout::Header & header() { return at< Layout::Header >( 0 ); }
   Layout::Site & site( std::size_t number ) {
      return at< Layout::Site >( Layout::sitesAt + number * sizeof( Layout::Site ) );
   }
   Layout::Record & record( std::size_t level, std::size_t number ) {
      return at< Layout::Record >( Layout::recordsAt +
                                   ( level * 2 + number ) * sizeof( Layout::Record ) );
   }
   std::string problem() const {
      try {
         readRing( good_ );
         return {};
      } catch ( RingError const & error ) {
         return error.what();
      }
   }
   Bytes good_;
};

TEST_F( RingReaderTest, TornAndDamagedRecordsAreToldApart ) {
   record( 8, 0 ).sequence = 0;
   ++record( 8, 1 ).echo;
   EXPECT_EQ( readRing( good_ ).unfinished, 2u );
   EXPECT_THAT( linesOf( readRing( good_ ) ), ElementsAre( "all: 258, 1, x, true" ) );

   std::size_t const atMost = sizeof record( 4, 0 ).arguments;
   record( 4, 0 ).argumentBytes = static_cast< U16 >( atMost + 1 );
   RingContents const ring = readRing( good_ );
   EXPECT_EQ( ring.damaged, 1u );
   EXPECT_TRUE( ring.records.empty() );
}

TEST_F( RingReaderTest, SaysWhatItCannotRead ) {
   header().recordsPerRing = ~0u; // as many as the file has
   header().sites = ~0u;
   EXPECT_EQ( problem(), "" );
   header().recordBytes = 0;
   EXPECT_EQ( problem(), "its sizes are not its version's" );
   header().version = 2;
   EXPECT_EQ( problem(), "it is a ring file of version 2, and not 1" );
   header().byteOrder = 7;
   EXPECT_EQ( problem(), "its byte order is none that can be" );
}

TEST_F( RingReaderTest, ReadsTheOtherByteOrder ) {
   auto const swap = []( auto &... number ) { ( ( number = byteSwapped( number ) ), ... ); };
   Layout::Header & h = header();
   swap( h.byteOrder, h.version, h.headerBytes, h.siteBytes, h.siteSlots, h.recordBytes, h.rings,
         h.recordsPerRing, h.sites, h.process, h.started, h.lostRecords );
   swap( site( 0 ).messageBytes, site( 1 ).messageBytes );
   for ( Layout::Record * const each : { &record( 8, 0 ), &record( 8, 1 ), &record( 4, 0 ) } ) {
      swap( each->sequence, each->time, each->site, each->argumentBytes, each->echo );
   }
   swap( at< U32 >( Layout::recordsAt + 8 * sizeof( Layout::Record ) + 20 ) ); // the 258
   Lines const read = linesOf( readRing( good_ ) );
   ASSERT_EQ( read.size(), 3u );
   EXPECT_EQ( read.back(), "all: 258, 1, x, true" );
}

} // namespace
} // namespace Sornlog
