// Sending tells others: a frame opens, leaves, ends, a state changes. Whoever is told may send
// something else, and loads the Tx field for that. What is being sent must not change by it.
#pragma once

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"

namespace Mrp {

// Does something that others are told of. Afterwards the Tx field of the type holds what it held,
// and a LeaveAll that waits for a vector to carry it still waits: it is the type's, and not that of
// what others send.
template < class Work >
void whileOthersAreTold( MrpLib & lib, U8 attributeType, Work const & work ) {
   withAttributeKindOrNone( lib.application(), attributeType, [&]( auto kind ) {
      using Kind = decltype( kind );
      if constexpr ( std::is_same_v< Kind, NoKind > ) {
         work();
      } else {
         MrpParseContext & context = *lib.mrpSm()->parseContext();
         typename Kind::Value const value = ( lib.*Kind::tx )();
         bool const leaveAllWaits = context.sendTxLvAll();
         context.sendTxLvAllIs( false );
         work();
         context.sendTxLvAllIs( leaveAllWaits );
         if ( ( lib.*Kind::tx )() != value ) {
            ( lib.*Kind::txIs )( value );
         }
      }
   } );
}

} // namespace Mrp
