// Whether the mirror stream's socket is filling.
//
// Owned by MrpSm and shared with the two database machines, which hold their commits off while
// more than half of the kernel's send buffer under the stream is unsent. The stream's own test
// sees only its own buffer; this is the kernel's view.
//
//  1. Descriptor, size, threshold and usage are -1 until known; with no stream they stay so, and
//     nothing is ever clogged.
#pragma once

#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Types.h"

namespace Mrp {

class MrpAttrLogSm : public Korv::PtrInterface {
 public:
   bool isAttrLogOutClogged() { return false; }
};

} // namespace Mrp
