// What is told when somebody asks for the size of an attribute that does not exist. The vocabulary
// itself does no output.
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/vocabulary/VectorFormat.h"

namespace Mrp {

U8 invalidAttributeTypeSize( U8 attributeType ) {
   trace( 8, " Invalid attribute type: ", attributeType );
   Sornlog::log( Ring::invalidAttributeType, attributeType );
   return 0;
}

U8 invalidApplicationSize( U32 application ) {
   trace( 8, " Invalid application type: ", application );
   Sornlog::log( Ring::invalidApplicationType, application );
   return 0;
}

} // namespace Mrp
