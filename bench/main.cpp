#include "bench/Benches.h"
#include "bench/Rounds.h"

namespace {

struct Entry {
   char const * name;
   void ( *run )( benchmark::State & state );
   int rounds;
};

constexpr Entry entries[] = {
   { "refresh", Bench::refresh, 200 },
   { "refreshInTurns", Bench::refreshInTurns, 1000 },
   { "firstRegistration", Bench::firstRegistration, 100 },
   { "leaveAllRound", Bench::leaveAllRound, 300 },
   { "declarations", Bench::declarations, 100 },
   { "refreshTalkers", Bench::refreshTalkers, 400 },
   { "sentLeaveAll", Bench::sentLeaveAll, 100 },
   { "expiry", Bench::expiry, 100 },
   { "idle", Bench::idle, 3 },
   { "ringSite", Bench::ringSite, 200 },
   { "ringSiteWithoutFile", Bench::ringSiteWithoutFile, 200 },
   { "changeAlone", Bench::changeAlone, 200 },
   { "changeObserved", Bench::changeObserved, 200 },
   { "changeStalled", Bench::changeStalled, 200 },
   { "refreshObserved", Bench::refreshObserved, 200 },
   { "firstRegistrationObserved", Bench::firstRegistrationObserved, 100 },
   { "leaveAllObserved", Bench::leaveAllObserved, 200 },
   { "refreshAtScale", Bench::refreshAtScale, 60 },
   { "observerAtScale", Bench::observerAtScale, 10 },
};

} // namespace

int main( int argc, char ** argv ) {
   for ( Entry const & entry : entries ) {
      benchmark::RegisterBenchmark( entry.name, entry.run )
         ->UseManualTime()
         ->Unit( benchmark::kMicrosecond )
         ->Iterations( entry.rounds );
   }
   benchmark::Initialize( &argc, argv );
   if ( benchmark::ReportUnrecognizedArguments( argc, argv ) ) {
      return 2;
   }
   benchmark::RunSpecifiedBenchmarks();
   benchmark::Shutdown();
   Bench::printTable();
   return 0;
}
