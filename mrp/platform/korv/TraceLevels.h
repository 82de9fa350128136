// Levels as a user writes them: "Mrp/4-8", "Mrp/2,4-8".
#pragma once

#include "mrp/platform/korv/Trace.h"

#include <span>
#include <string_view>

namespace Korv {

// "2,4-8": one bit a level, from 0 to 9. Throws RangeException.
U32 levelsFromText( std::string_view text );

// Each handle named has the levels given for it from now on, and no others; "2,Mrp/4-8" has no
// handle for its 2. Throws RangeException, and then nothing has changed.
void traceLevelsAre( std::string_view text, std::span< TraceHelper * const > handles );

} // namespace Korv
