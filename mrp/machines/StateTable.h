// What the applicant's and the registrar's tables have in common: a row for each event, which
// stands at its event's number.
#pragma once

#include <cstddef>

namespace Mrp {

constexpr bool rowsStandAtTheirEvents( auto const & table ) {
   for ( std::size_t i = 0; i < table.size(); ++i ) {
      if ( table[i].event != i ) {
         return false;
      }
   }
   return true;
}

} // namespace Mrp
