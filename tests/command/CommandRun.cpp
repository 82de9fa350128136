#include "tests/command/CommandRun.h"

#include <algorithm>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace CommandTest {

std::string contents( std::string const & path ) {
   std::ifstream in( path, std::ios::binary );
   return std::string( std::istreambuf_iterator< char >( in ), {} );
}

Outcome mrp( std::string const & words ) {
   std::string const base =
      std::filesystem::temp_directory_path() / ( "mrp-run-" + std::to_string( getpid() ) );
   std::string const line = MRP_COMMAND " " + words + " > " + base + ".out 2> " + base + ".err";
   int const state = std::system( line.c_str() );
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

CommandTest::CommandTest() {
   auto const * const test = ::testing::UnitTest::GetInstance()->current_test_info();
   directory_ = std::filesystem::temp_directory_path() /
                ( "mrp-" + std::string( test->name() ) + "-" + std::to_string( getpid() ) );
   std::filesystem::create_directories( directory_ );
}

CommandTest::~CommandTest() { std::filesystem::remove_all( directory_ ); }

std::string CommandTest::file( std::string const & name, std::string const & text ) const {
   std::ofstream( path( name ), std::ios::binary ) << text;
   return path( name );
}

std::string CommandTest::capture( std::string const & name,
                                  std::vector< Command::CapturedFrame > const & frames ) const {
   Command::writeCapture( path( name ), frames );
   return path( name );
}

} // namespace CommandTest
