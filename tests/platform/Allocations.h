// Counts this program's allocations, by a replaced operator new.
#pragma once

namespace Platform {

unsigned long allocations();

} // namespace Platform
