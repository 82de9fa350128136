// The benchmarks, in the order in which they run: one that leaves the heap in pieces comes last.
#pragma once

#include <benchmark/benchmark.h>

namespace Bench {

// VlanBench.cpp: all VLANs of one interface.
void refresh( benchmark::State & state );
void refreshInTurns( benchmark::State & state );
void firstRegistration( benchmark::State & state );
void leaveAllRound( benchmark::State & state );
void declarations( benchmark::State & state );
// StreamBench.cpp
void refreshTalkers( benchmark::State & state );
// LifeBench.cpp
void sentLeaveAll( benchmark::State & state );
void expiry( benchmark::State & state );
void idle( benchmark::State & state );
// RingBench.cpp
void ringSite( benchmark::State & state );
void ringSiteWithoutFile( benchmark::State & state );
// ObserverBench.cpp
void changeAlone( benchmark::State & state );
void changeObserved( benchmark::State & state );
void changeStalled( benchmark::State & state );
void refreshObserved( benchmark::State & state );
void firstRegistrationObserved( benchmark::State & state );
void leaveAllObserved( benchmark::State & state );
// ScaleBench.cpp
void refreshAtScale( benchmark::State & state );
void observerAtScale( benchmark::State & state );

} // namespace Bench
