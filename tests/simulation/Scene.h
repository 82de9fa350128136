// One seed: agents on faulty wires, a while of random operations, and then what must come of it.
//
//    build      a topology, agents and attributes
//    disturb    operations at random times, while the wires lose, repeat, delay and reorder frames
//               and are cut; Properties.h's checkAlways after each
//    settle     the wires are whole, the configuration is sane, nobody does anything any more
//    verify     within two LeaveAll periods, each stretched by up to a half, and a leave time, all
//               that is declared is registered at the neighbours and nothing else is; from then on
//               no registration comes or goes, and what comes to rest passes checkAtRest
//
// Everything follows from the seed: scene, operations, faults and the C library's rand().
#pragma once

#include "tests/simulation/FaultyWire.h"
#include "tests/simulation/Properties.h"

namespace Simulation {

class Scene {
 public:
   Scene( Mrp::MrpApplication application, U64 seed, Trace & trace );

   // Throws a Violation.
   void run();

 private:
   struct Attribute {
      Kind kind;
      // Where the value changes there is one port that ever declares it. All others have one value
      // for all: several declarers' values would overwrite each other.
      bool changes = false;
      U32 agent = 0;
      U32 port = 0;
   };
   struct End {
      Agent * agent;
      U32 port;
      bool operator==( End const & ) const = default;
   };
   // Each end hears all others, every two over a wire of their own.
   struct Segment {
      struct Pair {
         End one;
         End other;
         std::unique_ptr< FaultyWire > wire;
      };
      std::vector< End > ends;
      std::vector< Pair > pairs;
   };
   struct Operation {
      U32 weight;
      bool inStandby;
      void ( *run )( Scene & scene, Agent & agent, U32 port );
   };
   static std::vector< Operation > const & operations();

   void build();
   void buildAttributes();
   Agent::Setting buildSetting( U32 number );
   void buildSegment( std::vector< End > ends );
   void disturb();
   void settle();
   void verify();

   Attribute const & anyAttribute();
   void say( Agent & agent, U32 port, Attribute const & attribute, unsigned event, U32 times = 1 );
   void configure( Agent & agent, U32 port );
   void plug( End const & end, bool in );
   Bytes valueOf( Attribute const & attribute, U32 variant ) const;

   void checkAll();
   void checkConvergence() const;
   // What the port's registrar must hold; without a value where any will do.
   Book expected( End const & end ) const;
   bool isHeard( End const & end ) const;
   bool hears( std::size_t segment, std::size_t other ) const;

   Mrp::MrpApplication application_;
   Random random_;
   Trace & trace_;
   Memory::VirtualActivity activity_;
   std::vector< std::unique_ptr< Agent > > agents_;
   std::vector< Segment > segments_;
   std::vector< Attribute > attributes_;
   FaultyWire::Faults faults_;
   bool large_;
   bool valuesSettle_ = true; // two ends a segment, and a frame for all that they declare
   bool settled_ = false;
   U32 checks_ = 0;
   Korv::Seconds leaveAllTime_ = 60; // the longest that is or was configured
};

} // namespace Simulation
