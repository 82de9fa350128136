#include "tests/support/FaultyWire.h"

namespace TestSupport {

FaultyWire::FaultyWire( Random & random, Korv::Seconds delay ) : random_( random ) {
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

void FaultyWire::join( Korv::Ptr< Memory::Device > const & device ) {
   wire_.join( device );
   echo_.join( device );
}

void FaultyWire::leave( Memory::Device & device ) {
   wire_.leave( device );
   echo_.leave( device );
}

} // namespace TestSupport
