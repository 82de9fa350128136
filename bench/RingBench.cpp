// What a site of the ring buffer costs where it stands in the way: with no file a test, with one a
// record of an interface and two bytes.
#include "mrp/observability/RingSites.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/sornlog/RingFile.h"

#include "bench/Benches.h"
#include "bench/Rounds.h"

#include <filesystem>
#include <unistd.h>

namespace Bench {

namespace {

constexpr std::size_t passes = 4096;

void logEach() {
   Pelk::IntfId const intfId( "Ethernet1" );
   for ( std::size_t i = 0; i < passes; ++i ) {
      benchmark::ClobberMemory(); // whether there is a file is asked each time
      Sornlog::log( Mrp::Ring::joinDiscarded, intfId, static_cast< Korv::U8 >( i ), Korv::U8{ 1 } );
   }
}

void measure( benchmark::State & state, std::string const & name ) {
   LookUps const lookUps = ascendingLookUps( passes );
   alternate( state, name,
              { .work = logEach,
                .yardstick = lookUps,
                .attributes = passes,
                .passes = 4,
                .settleWork = 4 } );
}

} // namespace

void ringSite( benchmark::State & state ) {
   std::string const path =
      std::filesystem::temp_directory_path() / ( "mrp-bench-" + std::to_string( ::getpid() ) );
   {
      Sornlog::RingFile file( path );
      Sornlog::fileIs( &file );
      measure( state, "a ring site, with a file" );
      Sornlog::fileIs( nullptr );
   }
   std::filesystem::remove( path );
}

void ringSiteWithoutFile( benchmark::State & state ) { measure( state, "a ring site, with none" ); }

} // namespace Bench
