// Two agents' ports on a wire that loses, delays, reorders and repeats frames, or is cut. Three
// hosts on one segment are three of these: each hears what the others do or does not, apart from
// the rest.
#pragma once

#include "mrp/platform/memory/Wire.h"

#include "tests/simulation/Agent.h"
#include "tests/support/Random.h"

namespace Simulation {

class Link {
 public:
   struct Faults {
      double loss = 0;   // of all frames
      double late = 0;   // these come up to `lateness` later, and so behind others
      double repeat = 0; // these come twice
      double lateness = 0;
   };

   // Generator and faults are those of the scene, and outlive its links.
   Link( Random & random, Faults const & faults, Port & one, Port & other )
      : ports_{ &one, &other } {
      wire_.delayIs( random.oneOf( { 0.0, 0.001, 0.013, 0.05 } ) );
      wire_.judgeIs( [&]( Memory::Device const &, Memory::FrameBytes ) {
         bool const arrives = !cut_ && !random.chance( faults.loss );
         bool const late = random.chance( faults.late );
         U32 const copies = random.chance( faults.repeat ) ? 2 : 1;
         return Memory::Wire::Fate{ arrives ? copies : 0,
                                    late ? random.between( 0, faults.lateness ) : 0 };
      } );
      plug( one );
      plug( other );
   }

   // The port that hears this one, or null.
   Port * beyond( Port const & port ) const {
      return &port == ports_[0] ? ports_[1] : &port == ports_[1] ? ports_[0] : nullptr;
   }
   // With the device that it has.
   void plug( Port const & port ) { wire_.join( port.agent->host().device( port.intfId ) ); }
   void unplug( Memory::Device & device ) { wire_.leave( device ); }
   // What is in flight is not touched.
   void cutIs( bool cut ) { cut_ = cut; }

 private:
   Port * ports_[2];
   bool cut_ = false;
   Memory::Wire wire_;
};

} // namespace Simulation
