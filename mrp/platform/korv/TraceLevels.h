// Levels as a user writes them: "Mrp/4-8", "Mrp/2,4-8".
#pragma once

#include "mrp/platform/korv/Trace.h"

#include <span>
#include <string_view>

namespace Korv {

// "2,4-8": one bit a level, from 0 to 9. Throws RangeException.
U32 levelsFromText( std::string_view text );

// From now on each handle that is named has the levels given for it and no others; the rest stay as
// they are. Throws RangeException, and then nothing has changed: for a name that is no handle's,
// for levels that are none, and for levels ahead of all names, as in "2,Mrp/4-8".
void traceLevelsAre( std::string_view text, std::span< TraceHelper * const > handles );

} // namespace Korv
