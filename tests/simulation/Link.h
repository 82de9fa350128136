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
      double repeat = 0; // these come a second time, up to `lateness` after the first
      double lateness = 0;
   };

   // Generator and faults are those of the scene, and outlive its links.
   Link( Random & random, Faults const & faults, End const & one, End const & other )
      : ends_{ one, other } {
      using Fate = Memory::Wire::Fate;
      double const delay = random.oneOf( { 0.0, 0.001, 0.013, 0.05 } );
      wire_.delayIs( delay );
      wire_.judgeIs( [&]( Memory::Device const &, Memory::FrameBytes ) {
         bool const arrives = !cut_ && !random.chance( faults.loss );
         bool const late = random.chance( faults.late );
         return Fate{ arrives, late ? random.between( 0, faults.lateness ) : 0 };
      } );
      echo_.delayIs( delay );
      echo_.judgeIs( [&]( Memory::Device const &, Memory::FrameBytes ) {
         bool const repeats = !cut_ && random.chance( faults.repeat );
         return Fate{ repeats, random.between( 0, faults.lateness ) };
      } );
      for ( End const & end : ends_ ) {
         plug( end );
      }
   }

   // The end that hears this one, or null.
   End const * beyond( End const & end ) const {
      return end == ends_[0] ? &ends_[1] : end == ends_[1] ? &ends_[0] : nullptr;
   }
   // With the device that it has.
   void plug( End const & end ) {
      wire_.join( end.host().device( end.intfId() ) );
      echo_.join( end.host().device( end.intfId() ) );
   }
   void unplug( Memory::Device & device ) {
      wire_.leave( device );
      echo_.leave( device );
   }
   // What is in flight is not touched.
   void cutIs( bool cut ) { cut_ = cut; }

 private:
   End ends_[2];
   bool cut_ = false;
   Memory::Wire wire_;
   Memory::Wire echo_; // the second copies
};

} // namespace Simulation
