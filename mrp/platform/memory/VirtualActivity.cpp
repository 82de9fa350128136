#include "mrp/platform/memory/VirtualActivity.h"

#include "mrp/platform/korv/Assert.h"

#include <algorithm>

namespace Memory {

void VirtualActivity::advanceTo( Seconds time ) {
   Korv::assertThat( !advancing_, "time is advanced from outside of all timers" );
   advancing_ = true;
   struct Advance {
      bool & flag;
      ~Advance() { flag = false; } // also when a timer throws
   } const advance{ advancing_ };

   while ( nextTime() <= time && nextTime() != Korv::never ) {
      // A timer asked for a time that has passed fires now.
      clock()->nowIs( std::max( clock()->now(), nextTime() ) );
      clock()->doFireNext();
   }
   clock()->nowIs( std::max( clock()->now(), time ) );
}

} // namespace Memory
