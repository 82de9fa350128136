// The simulations, and the program's options:
//
//    tests-simulation                                   as the test command runs it
//    tests-simulation --seeds=5000 --first-seed=1       any number
//    tests-simulation --gtest_filter='*/MSRP' --first-seed=17 --seeds=1 --trace
//                                                       one seed again, told in words
//
// Each simulation runs in a process of its own, since the first participant of a process fixes the
// packet filter for all.
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/simulation/Scene.h"

#include <gtest/gtest.h>

#include <iostream>

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
   repeatCommand = "   tests-simulation --gtest_filter='*/" + Mrp::stringValue( application ) +
                   "' --first-seed=" + std::to_string( seed ) + " --seeds=1 --trace\n";
   Scene( application, seed, words ).run();
   if ( U32 const left = Pelk::globalPktManager().pkts() ) {
      throw Violation( std::to_string( left ) + " packets are left" );
   }
}

// A few seeds run twice: a seed has one trace.
void runOnceOrTwice( Mrp::MrpApplication application, U64 seed ) {
   if ( inWords || seed >= firstSeed + 20 ) {
      return runSeed( application, seed, inWords ? &std::cout : nullptr );
   }
   std::ostringstream first;
   std::ostringstream second;
   runSeed( application, seed, &first );
   runSeed( application, seed, &second );
   if ( first.str() != second.str() ) {
      throw Violation( "two traces" );
   }
}

// Ends the process, with 0 if all seeds pass.
void runSeeds( Mrp::MrpApplication application ) {
   Korv::assertionHandlerIs( []( char const * text ) {
      std::cout << "asserted: " << text << '\n' << repeatCommand << std::flush;
   } );
   U64 failed = 0;
   for ( U64 seed = firstSeed; seed < firstSeed + seeds; ++seed ) {
      try {
         runOnceOrTwice( application, seed );
      } catch ( Violation const & violation ) {
         std::cout << "seed " << seed << ": " << violation.what() << '\n' << repeatCommand;
         ++failed;
      }
   }
   std::cout << seeds << " seeds from " << firstSeed << ": " << failed << " failed" << std::endl;
   std::exit( failed != 0 );
}

using Simulation = testing::TestWithParam< Mrp::MrpApplication >;

TEST_P( Simulation, settlesWhateverHappenedBefore ) {
   EXPECT_EXIT( runSeeds( GetParam() ), testing::ExitedWithCode( 0 ), "" );
}

INSTANTIATE_TEST_SUITE_P(, Simulation, testing::Values( Mrp::MVRP, Mrp::MSRP ),
                         []( auto const & of ) { return Mrp::stringValue( of.param ); } );

} // namespace

bool readArgument( std::string const & argument ) {
   auto const read = [&]( std::string const & option, U64 & value ) {
      bool const isThis = argument.starts_with( option );
      value = isThis ? std::stoull( argument.substr( option.size() ) ) : value;
      return isThis;
   };
   inWords = inWords || argument == "--trace";
   return argument == "--trace" || read( "--seeds=", seeds ) || read( "--first-seed=", firstSeed );
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
