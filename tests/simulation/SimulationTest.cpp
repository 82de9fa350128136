// The simulations, and the program's options:
//
//    tests-simulation                                   as the test command runs it
//    tests-simulation --seeds=5000 --first-seed=1       any number
//    tests-simulation --gtest_filter='*/MSRP' --first-seed=17 --seeds=1 --trace
//                                                       one seed again, with the trace of all that
//                                                       happens; A1 is the first agent's first port
//
// Each simulation runs in a process of its own, since the first participant of a process fixes the
// packet filter for all.
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/pelk/PktManager.h"

#include "tests/simulation/Scene.h"
#include "tests/support/Capture.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <iostream>

namespace Simulation {

namespace {

#if defined( __SANITIZE_ADDRESS__ )
U64 seeds = 60;
#else
U64 seeds = 1000;
#endif
U64 firstSeed = 1;

void runSeed( Mrp::MrpApplication application, U64 seed ) {
   Scene( application, seed ).run();
   if ( U32 const left = Pelk::globalPktManager().pkts() ) {
      throw Violation( std::to_string( left ) + " packets are left" );
   }
}

std::vector< std::string > traceOf( Mrp::MrpApplication application, U64 seed ) {
   TraceCapture const trace;
   runSeed( application, seed );
   return trace.lines();
}

// Ends the process, with 0 if all seeds pass.
void runSeeds( Mrp::MrpApplication application ) {
   static U64 seed; // for when it ends in an assertion
   Korv::assertionHandlerIs(
      []( char const * text ) { std::cout << "seed " << seed << ": " << text << std::endl; } );
   U64 failed = 0;
   for ( seed = firstSeed; seed < firstSeed + seeds; ++seed ) {
      try {
         runSeed( application, seed );
         // A seed has one trace, which a few are enough to show.
         if ( seed % 100 == 1 && traceOf( application, seed ) != traceOf( application, seed ) ) {
            throw Violation( "two traces" );
         }
      } catch ( Violation const & violation ) {
         std::cout << "seed " << seed << ": " << violation.what() << '\n';
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

bool readArgument( char const * argument ) {
   if ( std::string( argument ) == "--trace" ) {
      Mrp::mrpTrace.levelsIs( ~0u );
      Korv::traceSinkIs( []( auto const &, U32, auto, std::string const & text ) {
         std::cout << Korv::now() << ' ' << text << '\n';
      } );
      return true;
   }
   return std::sscanf( argument, "--seeds=%" SCNu64, &seeds ) == 1 ||
          std::sscanf( argument, "--first-seed=%" SCNu64, &firstSeed ) == 1;
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
