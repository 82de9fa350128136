// One seed: agents on faulty links, a while of random operations, and then what must come of it.
//
//    build      a topology, agents and attributes
//    disturb    operations at random times, while the links lose, repeat, delay and reorder frames
//               and are cut; Properties.h's checkAlways after each
//    settle     the links are whole, the configuration is sane, nobody does anything any more
//    verify     within two LeaveAll periods, each stretched by up to a half, and a leave time, all
//               that is declared is registered at the neighbours and nothing else is; from then on
//               no registration comes or goes, and without LeaveAll all comes to rest: checkAtRest
//
// Everything follows from the seed: scene, operations, faults and the C library's rand().
#pragma once

#include "tests/simulation/Link.h"
#include "tests/simulation/Properties.h"

namespace Simulation {

class Scene {
 public:
   Scene( Mrp::MrpApplication application, U64 seed );

   // Throws a Violation.
   void run();

 private:
   void build();
   void buildKinds();
   Agent::Setting buildSetting( U32 number, U32 ports );
   void disturb();
   void operate();
   void settle();
   void verify();

   Kind const & anyKind();
   void sayAnything( Port & port );
   void sayMuch( Port & port );
   // Where the value changes there is one port that ever declares it. All others have one value for
   // all: several declarers' values would overwrite each other.
   void say( Port & port, Kind const & kind, unsigned event, U32 times = 1 );
   void plug( Port & port, bool in );

   void phaseIs( Phase phase );
   void checkAll();
   void checkConvergence() const;
   // Lets time pass, and then all that is declared is registered, and nothing else.
   void converge( Korv::Seconds within );
   // What the port's registrar must hold; without a value where any will do.
   Book expected( Port const & port ) const;

   Mrp::MrpApplication application_;
   Random random_;
   Memory::VirtualActivity activity_;
   std::vector< std::unique_ptr< Agent > > agents_;
   std::vector< Port * > ports_; // of all agents
   Link::Faults faults_;
   std::vector< std::unique_ptr< Link > > links_;
   std::vector< Kind > kinds_;       // the attributes that there are
   bool valuesSettle_ = true;        // two ports a segment, and a frame for all that they declare
   Korv::Seconds leaveAllTime_ = 60; // the longest that is or was configured
};

} // namespace Simulation
