#include "mrp/vocabulary/MrpKeys.h"

#include "mrp/platform/korv/RangeException.h"

namespace Mrp {

ValueIndex::ValueIndex( U64 value ) : value_( static_cast< U8 >( value ) ) {
   if ( value > max ) {
      Korv::throwRangeException(
         "ValueIndex::value < ValueIndex::min or > ValueIndex::max not allowed" );
   }
}

ValueIndex ValueIndex::textRead( Korv::TextReader & in ) {
   return ValueIndex( Korv::textReadField< U64 >( in, "value" ) );
}

} // namespace Mrp
