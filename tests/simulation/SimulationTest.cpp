// The simulations, and the program's options:
//
//    tests-simulation                                   as the test command runs it
//    tests-simulation --seeds=5000 --first-seed=1       any number
//    tests-simulation --gtest_filter='*settles*/MSRP' --first-seed=17 --seeds=1 --trace
//                                                       one seed again, told in words
//
// Each simulation runs in a process of its own, since the first participant of a process fixes the
// packet filter for all.
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/simulation/Scene.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace Simulation {

namespace {

#if defined( __SANITIZE_ADDRESS__ )
U64 seeds = 60;
#else
U64 seeds = 1000;
#endif
U64 firstSeed = 1;
bool inWords = false;

// Repeats the seed at hand; global for when that ends in an assertion.
std::string repeatCommand;

// Throws a Violation.
void runSeed( Mrp::MrpApplication application, U64 seed, std::ostream * words ) {
   repeatCommand = "   tests-simulation --gtest_filter='*settles*/" +
                   Mrp::stringValue( application ) + "' --first-seed=" + std::to_string( seed ) +
                   " --seeds=1 --trace";
   Trace trace( words );
   Scene( application, seed, trace ).run();
   if ( U32 const left = Pelk::globalPktManager().pkts() ) {
      throw Violation( std::to_string( left ) + " packets are left" );
   }
}

// True if no seed failed.
bool runSeeds( Mrp::MrpApplication application ) {
   U64 failed = 0;
   for ( U64 seed = firstSeed; seed < firstSeed + seeds; ++seed ) {
      try {
         runSeed( application, seed, inWords ? &std::cout : nullptr );
      } catch ( Violation const & violation ) {
         std::cout << "seed " << seed << ": " << violation.what() << '\n' << repeatCommand << '\n';
         ++failed;
      }
   }
   std::cout << Mrp::stringValue( application ) << ", " << seeds << " seeds from " << firstSeed
             << ": " << failed << " failed\n";
   return failed == 0;
}

// The whole traces of a few seeds, each run twice.
bool runTwice( Mrp::MrpApplication application ) {
   for ( U64 seed = firstSeed; seed < firstSeed + std::min< U64 >( seeds, 20 ); ++seed ) {
      std::ostringstream first;
      std::ostringstream second;
      runSeed( application, seed, &first );
      runSeed( application, seed, &second );
      if ( first.str() != second.str() ) {
         std::cout << "seed " << seed << " has two traces\n" << repeatCommand << '\n';
         return false;
      }
   }
   return true;
}

bool inProcessOfItsOwn( bool ( *simulation )( Mrp::MrpApplication ),
                        Mrp::MrpApplication application ) {
   std::cout.flush();
   pid_t const child = fork();
   if ( child == 0 ) {
      Korv::assertionHandlerIs( []( char const * text ) {
         std::cout << "asserted: " << text << '\n' << repeatCommand << std::endl;
      } );
      std::exit( simulation( application ) ? 0 : 1 );
   }
   int status = 0;
   return child > 0 && waitpid( child, &status, 0 ) == child && status == 0;
}

using Simulation = testing::TestWithParam< Mrp::MrpApplication >;

TEST_P( Simulation, settlesWhateverHappenedBefore ) {
   EXPECT_TRUE( inProcessOfItsOwn( runSeeds, GetParam() ) );
}

TEST_P( Simulation, hasOneTraceASeed ) { EXPECT_TRUE( inProcessOfItsOwn( runTwice, GetParam() ) ); }

INSTANTIATE_TEST_SUITE_P(, Simulation, testing::Values( Mrp::MVRP, Mrp::MSRP ),
                         []( auto const & of ) { return Mrp::stringValue( of.param ); } );

} // namespace

bool readArgument( std::string_view argument ) {
   for ( auto const & [name, value] : { std::pair{ std::string_view( "--seeds=" ), &seeds },
                                        { "--first-seed=", &firstSeed } } ) {
      if ( argument.starts_with( name ) ) {
         *value = std::stoull( std::string( argument.substr( name.size() ) ) );
         return true;
      }
   }
   inWords = inWords || argument == "--trace";
   return argument == "--trace";
}

} // namespace Simulation

int main( int argc, char ** argv ) {
   testing::InitGoogleTest( &argc, argv );
   for ( int i = 1; i < argc; ++i ) {
      if ( !Simulation::readArgument( argv[i] ) ) {
         std::cerr << "unknown: " << argv[i] << '\n';
         return 2;
      }
   }
   return RUN_ALL_TESTS();
}
