#include "mrp/vocabulary/MrpConstants.h"

#include "mrp/platform/korv/RangeException.h"

#include <array>

namespace Mrp {

namespace {

struct NamedConstant {
   MrpConstants value;
   std::string_view name;
};
constexpr std::array namedConstants{ NamedConstant{ endOfMark, "endOfMark" },
                                     NamedConstant{ mrpMaxTxDataSz, "mrpMaxTxDataSz" } };

} // namespace

std::string stringValue( MrpConstants value ) {
   for ( auto const & constant : namedConstants ) {
      if ( value == constant.value ) {
         return std::string( constant.name );
      }
   }
   return std::to_string( static_cast< U32 >( value ) );
}

MrpConstants MrpConstantsConversion::operator()( U64 number ) const {
   for ( auto const & constant : namedConstants ) {
      if ( number == constant.value ) {
         return constant.value;
      }
   }
   Korv::throwRangeException( "MrpConstants: no value " + std::to_string( number ) );
}

MrpConstants MrpConstantsConversion::operator()( std::string_view name ) const {
   for ( auto const & constant : namedConstants ) {
      if ( name == constant.name ) {
         return constant.value;
      }
   }
   Korv::throwRangeException( "MrpConstants: no name '" + std::string( name ) + "'" );
}

} // namespace Mrp
