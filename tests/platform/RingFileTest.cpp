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
constexpr Site three{ 8, "", "ppp" };

class RingFileTest : public ::testing::Test {
 protected:
   RingFileTest() { std::filesystem::create_directory( directory_ ); }
   ~RingFileTest() override {
      close();
      std::filesystem::remove_all( directory_ );
   }

   void open( U32 recordsPerRing = 4 ) {
      close();
      file_ = std::make_unique< RingFile >( path_, recordsPerRing );
      fileIs( file_.get() );
   }
   void close() {
      fileIs( nullptr );
      file_.reset();
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
   std::string refusal() const {
      try {
         RingFile const other( path_ );
         return {};
      } catch ( std::runtime_error const & error ) {
         return error.what();
      }
   }

   std::filesystem::path directory_ =
      std::filesystem::temp_directory_path() / ( "mrp-ring-" + std::to_string( ::getpid() ) );
   std::string path_ = directory_ / "ring";
   std::unique_ptr< RingFile > file_;
};

TEST_F( RingFileTest, RecordsComeBackInOrderOfTimeOverAllLevels ) {
   open();
   log( everyday, "eth0", 1 );
   log( all, -2147483647 - 1, U8{ 255 }, "", true );
   log( everyday, std::string( "eth1" ), 2 );
   log( all, 7, U8{ 0 }, "\x1b[31m\xff", false );
   RingContents const ring = readRing( bytes() );
   EXPECT_THAT( linesOf( ring ),
                ElementsAre( "on eth0 at 1", "all: -2147483648, 255, , true", "on eth1 at 2",
                             "all: 7, 0, \\x1b[31m\\xff, false" ) );
   EXPECT_EQ( ring.process, static_cast< U32 >( ::getpid() ) );
   EXPECT_EQ( ring.sites.size(), 2u ) << "each is registered once";
   for ( RingRecord const & record : ring.records ) {
      EXPECT_LT( record.time - ring.started, 60'000'000'000u );
   }
}

TEST_F( RingFileTest, LongStringsAreCut ) {
   open();
   std::string const fits( 32, 'a' );
   std::string const tooLong( 33, 'b' );
   log( three, fits, tooLong, std::string( 1000, 'c' ) );
   EXPECT_THAT( lines(), ElementsAre( fits + ", " + tooLong.substr( 1 ) + "..., " +
                                      std::string( 32, 'c' ) + "..." ) );
}

TEST_F( RingFileTest, TheLatestOfEachLevelStay ) {
   open( 3 );
   log( all, 0, U8{ 0 }, "rare", true );
   for ( int i = 1; i <= 7; ++i ) {
      log( everyday, "eth0", i );
   }
   EXPECT_THAT( lines(), ElementsAre( "all: 0, 0, rare, true", "on eth0 at 5", "on eth0 at 6",
                                      "on eth0 at 7" ) );
}

TEST_F( RingFileTest, SitesWithoutASlotAreCounted ) {
   open( 200 );
   std::deque< Site > sites;
   for ( U32 i = 0; i < Layout::siteSlots + 2; ++i ) {
      log( sites.emplace_back( Site{ 8, "site ", "i" } ), static_cast< S32 >( i ) );
      log( everyday, "eth0", 0 );
   }
   RingContents const ring = readRing( bytes() );
   EXPECT_EQ( ring.lost, 3u ) << "one slot is everyday's";
   EXPECT_THAT( linesOf( ring ), ::testing::Contains( "site 126" ) );
   EXPECT_EQ( ring.damaged, 0u );
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
      EXPECT_EQ( ring.records.back().sequence - ring.records.front().sequence + 1,
                 ring.records.size() );
      EXPECT_EQ( ring.records.back().arguments.at( 1 ).number + 1,
                 static_cast< S32 >( ring.records.back().sequence ) );
   }
}

TEST_F( RingFileTest, ARestartKeepsWhatWasThere ) {
   open();
   EXPECT_EQ( refusal(), path_ + ": another process writes it" );
   log( everyday, "eth0", 1 );
   EXPECT_THAT( lines(), ElementsAre( "on eth0 at 1" ) );
   open();
   EXPECT_THAT( lines(), ElementsAre() );
   path_ += ".old";
   EXPECT_THAT( lines(), ElementsAre( "on eth0 at 1" ) );
}

TEST_F( RingFileTest, WhatIsNoRingFileIsLeftAlone ) {
   std::ofstream( path_ ) << "precious, and longer than a magic word";
   EXPECT_EQ( refusal(), path_ + ": it is no ring file, and is left alone" );
   EXPECT_EQ( bytes().size(), 38u );
   path_ = directory_;
   EXPECT_EQ( refusal(), path_ + ": it is no ring file, and is left alone" );
   path_ = directory_ / "none" / "ring";
   EXPECT_EQ( refusal(), path_ + ".new: No such file or directory" );
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

   Layout::Record & damaged = record( 4, 0 );
   auto const whole = damaged;
   auto const isDamaged = [&] {
      RingContents const ring = readRing( good_ );
      damaged = whole;
      return ring.damaged == 1 && ring.records.empty();
   };
   damaged.argumentBytes = 105;
   EXPECT_TRUE( isDamaged() );
   ++damaged.argumentBytes;
   EXPECT_TRUE( isDamaged() );
   damaged.arguments[5] = 100;
   EXPECT_TRUE( isDamaged() ) << "a string that ends elsewhere";
   damaged.site = damaged.argumentBytes = 0;
   EXPECT_TRUE( isDamaged() ) << "a message of another level";
   damaged.site = 0xffff;
   EXPECT_TRUE( isDamaged() );
}

TEST_F( RingReaderTest, SaysWhatItCannotRead ) {
   header().version = 2;
   EXPECT_EQ( problem(), "it is a ring file of version 2, and not 1" );
   header().byteOrder = 7;
   EXPECT_EQ( problem(), "its byte order is none that can be" );
   good_ = bytes();
   header().recordBytes = 0;
   EXPECT_EQ( problem(), "its sizes are not its version's" );
   good_ = bytes();
   header().recordsPerRing = ~0u;
   header().sites = ~0u;
   EXPECT_EQ( problem(), "" );
   // Any end.
   for ( good_ = bytes(); !good_.empty(); good_.pop_back() ) {
      EXPECT_EQ( problem().empty(), good_.size() >= Layout::recordsAt );
   }
   EXPECT_EQ( problem(), "it is no ring file" );
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
