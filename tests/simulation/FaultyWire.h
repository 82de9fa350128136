// A wire between two in-memory devices that loses, delays, reorders and repeats frames, or is cut.
#pragma once

#include "mrp/platform/memory/Wire.h"

#include "tests/support/Random.h"

namespace Simulation {

using TestSupport::Random;

// Three devices on one segment are three of these: each hears what the others do or does not, apart
// from the rest.
class FaultyWire {
 public:
   struct Faults {
      double loss = 0;   // of all frames
      double late = 0;   // these come up to `lateness` later, and so behind others
      double repeat = 0; // these come a second time, up to `lateness` after the first
      double lateness = 0;
   };

   // The generator is shared by a scene's wires and outlives them.
   FaultyWire( Random & random, Korv::Seconds delay ) : random_( random ) {
      using Fate = Memory::Wire::Fate;
      wire_.delayIs( delay );
      wire_.judgeIs( [this]( Memory::Device const &, Memory::FrameBytes ) {
         if ( cut_ || random_.chance( faults_.loss ) ) {
            return Fate{ 0, 0 };
         }
         bool const late = random_.chance( faults_.late );
         return Fate{ 1, late ? random_.between( 0, faults_.lateness ) : 0 };
      } );
      echo_.delayIs( delay );
      echo_.judgeIs( [this]( Memory::Device const &, Memory::FrameBytes ) {
         bool const repeated = !cut_ && random_.chance( faults_.repeat );
         return Fate{ repeated ? 1u : 0u, random_.between( 0, faults_.lateness ) };
      } );
   }

   void join( Korv::Ptr< Memory::Device > const & device ) {
      wire_.join( device );
      echo_.join( device );
   }
   void leave( Memory::Device & device ) {
      wire_.leave( device );
      echo_.leave( device );
   }

   // Faultless until told otherwise; what is in flight is not touched.
   void faultsIs( Faults const & faults ) { faults_ = faults; }
   void cutIs( bool cut ) { cut_ = cut; }

 private:
   Random & random_;
   Faults faults_;
   bool cut_ = false;
   Memory::Wire wire_;
   Memory::Wire echo_; // the second copies
};

} // namespace Simulation
