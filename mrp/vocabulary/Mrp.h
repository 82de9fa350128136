// The core values of the protocol.
#pragma once

#include "mrp/vocabulary/MrpConstants.h"
#include "mrp/vocabulary/MrpEnums.h"
#include "mrp/vocabulary/MrpKeys.h"
