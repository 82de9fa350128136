#include "mrp/platform/korv/Entity.h"

namespace Korv {

String8 Entity::fullName() const {
   if ( !parent_ ) {
      return name();
   }
   return parent_->fullName().stringValue() + "/" + parentAttrName().stringValue() + "/" +
          keyText().stringValue();
}

} // namespace Korv
