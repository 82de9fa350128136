// A wire between two in-memory devices that loses, delays, reorders and repeats frames, or is cut.
#pragma once

#include "mrp/platform/memory/Wire.h"

#include "tests/support/Random.h"

namespace TestSupport {

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
   FaultyWire( Random & random, Korv::Seconds delay );

   void join( Korv::Ptr< Memory::Device > const & device );
   void leave( Memory::Device & device );

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

} // namespace TestSupport
