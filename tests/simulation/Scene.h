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
   // Says in words what happens, if given where.
   Scene( Mrp::MrpApplication application, U64 seed, std::ostream * words );

   // Throws a Violation.
   void run();

 private:
   struct Attribute {
      Kind kind;
      // Where the value changes there is one port that ever declares it. All others have one value
      // for all: several declarers' values would overwrite each other.
      bool changes;
      End home = {};
   };

   void build();
   void buildAttributes();
   Agent::Setting buildSetting( U32 number );
   void disturb();
   void operate();
   void settle();
   void verify();

   Attribute const & anyAttribute();
   void sayAnything( End const & end );
   void sayMuch( End const & end );
   void say( End const & end, Attribute const & attribute, unsigned event, U32 times = 1 );
   void configure( End const & end );
   void plug( End const & end, bool in );

   void checkAll();
   void checkConvergence() const;
   // What the port's registrar must hold; without a value where any will do.
   Book expected( End const & end ) const;
   // Adds what those declare whom `from` hears, directly or by way of agents that flood.
   void gather( End const & end, End const & from, Book & heard ) const;

   Mrp::MrpApplication application_;
   Random random_;
   std::ostream * words_;
   Memory::VirtualActivity activity_;
   std::vector< std::unique_ptr< Agent > > agents_;
   std::vector< End > ends_; // of all agents
   Link::Faults faults_;
   std::vector< std::unique_ptr< Link > > links_;
   std::vector< Attribute > attributes_;
   bool large_;
   bool valuesSettle_ = true; // two ends a segment, and a frame for all that they declare
   bool settled_ = false;
   U32 checks_ = 0;
   Korv::Seconds leaveAllTime_ = 60; // the longest that is or was configured
};

} // namespace Simulation
