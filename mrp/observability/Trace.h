// The text trace of the protocol, under the handle "Mrp": `trace( 8, "Port role for ", intfId )`.
//
// Level 8 is the everyday detail (function entry, values), 7 reviews and transmissions, 6 tagged
// frames, 4 parse errors and unexpected conditions, 3 the mirror stream's back-pressure, 2 a frame
// with the wrong destination.
//
// A site costs one test while its level is off; what it names is evaluated, but not composed.
#pragma once

#include "mrp/platform/korv/Trace.h"

namespace Mrp {

// One for the process, also where a library and its user hide their symbols from each other.
[[gnu::visibility( "default" )]] inline constinit Korv::TraceHelper mrpTrace{ "Mrp" };

// For a site whose parts cost something to compute.
inline bool traceIsOn( Korv::U32 level ) { return mrpTrace.isOn( level ); }

template < class... P >
inline void trace( Korv::TraceLevel level, P const &... parts ) {
   if ( traceIsOn( level.level ) ) [[unlikely]] {
      Korv::traceCompose< Korv::TracePass< P >... >( mrpTrace, level.level, level.at.file,
                                                     level.at.line, parts... );
   }
}

} // namespace Mrp
