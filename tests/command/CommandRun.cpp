#include "tests/command/CommandRun.h"

#include "command/CommandLine.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace CommandTest {

namespace {

std::string contents( std::string const & path ) {
   std::ifstream in( path, std::ios::binary );
   std::ostringstream text;
   text << in.rdbuf();
   return text.str();
}

// Least significant byte first.
void putLittle( Bytes & to, std::uint64_t number, unsigned size ) {
   for ( unsigned i = 0; i < size; ++i ) {
      to.push_back( static_cast< std::uint8_t >( number >> ( 8 * i ) ) );
   }
}

} // namespace

Outcome mrp( std::vector< std::string > const & arguments ) {
   std::string const base =
      std::filesystem::temp_directory_path() / ( "mrp-run-" + std::to_string( getpid() ) );
   pid_t const child = fork();
   if ( child == 0 ) {
      std::vector< char const * > argv{ "mrp" };
      for ( std::string const & argument : arguments ) {
         argv.push_back( argument.c_str() );
      }
      int status = 0;
      {
         std::ofstream out( base + ".out" );
         std::ofstream err( base + ".err" );
         status =
            Command::runCommandLine( static_cast< int >( argv.size() ), argv.data(), out, err );
      }
      _exit( status );
   }
   int state = 0;
   EXPECT_EQ( waitpid( child, &state, 0 ), child );
   Outcome const outcome{ WIFEXITED( state ) ? WEXITSTATUS( state ) : -1, contents( base + ".out" ),
                          contents( base + ".err" ) };
   std::filesystem::remove( base + ".out" );
   std::filesystem::remove( base + ".err" );
   return outcome;
}

void expectRefused( Outcome const & outcome, std::string const & words ) {
   EXPECT_EQ( outcome.status, 2 ) << words;
   EXPECT_EQ( outcome.out, "" ) << words;
   EXPECT_NE( outcome.err.find( words ), std::string::npos ) << outcome.err << "has no " << words;
   EXPECT_EQ( std::count( outcome.err.begin(), outcome.err.end(), '\n' ), 1 ) << outcome.err;
}

Bytes pcap( std::vector< Stamped > const & frames, std::uint32_t linkType ) {
   Bytes bytes;
   putLittle( bytes, 0xA1B2C3D4, 4 );
   putLittle( bytes, 2, 2 );
   putLittle( bytes, 4, 2 );
   putLittle( bytes, 0, 8 );
   putLittle( bytes, 65535, 4 );
   putLittle( bytes, linkType, 4 );
   for ( Stamped const & stamped : frames ) {
      putLittle( bytes, static_cast< std::uint64_t >( stamped.time / 1'000'000'000 ), 4 );
      putLittle( bytes, static_cast< std::uint64_t >( stamped.time % 1'000'000'000 / 1000 ), 4 );
      putLittle( bytes, stamped.frame.size(), 4 );
      putLittle( bytes, stamped.frame.size(), 4 );
      TestSupport::put( bytes, stamped.frame );
   }
   return bytes;
}

CommandTest::CommandTest() {
   auto const * const test = ::testing::UnitTest::GetInstance()->current_test_info();
   directory_ = std::filesystem::temp_directory_path() /
                ( "mrp-" + std::string( test->name() ) + "-" + std::to_string( getpid() ) );
   std::filesystem::create_directories( directory_ );
}

CommandTest::~CommandTest() { std::filesystem::remove_all( directory_ ); }

std::string CommandTest::file( std::string const & name, Bytes const & bytes ) const {
   std::ofstream out( path( name ), std::ios::binary );
   out.write( reinterpret_cast< char const * >( bytes.data() ),
              static_cast< std::streamsize >( bytes.size() ) );
   return path( name );
}

} // namespace CommandTest
