#include "mrp/frame/AttributeKinds.h"

#include "mrp/observability/Trace.h"

namespace Mrp {

MsrpTalkerAdvertiseAttribute
mrpIncrementTalkerAttribute( MsrpTalkerAdvertiseAttribute const & value ) {
   MsrpTalkerAdvertiseAttribute next = value;
   DataFrameParameters frame = value.frame();
   frame.dmacIs( Pelk::EthAddr::fromNumber( frame.dmac().number() + 1 ) );
   trace( 8, "original dmac = ", value.frame().dmac(), ", converted dmac = ", frame.dmac() );
   next.frameIs( frame );
   next.streamIdIs( value.streamId() + 1 );
   return next;
}

bool mrpTalkerValueInSequence( U64 firstStreamId, U64 streamId, Pelk::EthAddr const & firstDmac,
                               Pelk::EthAddr const & dmac, U16 numberOfValues ) {
   return firstStreamId + numberOfValues == streamId &&
          firstDmac.number() + numberOfValues == dmac.number();
}

bool mrpDomainValueInSequence( U8 firstClassId, U8 classId, U8 firstPriority, U8 priority,
                               U16 numberOfValues ) {
   return firstClassId + numberOfValues == classId && firstPriority + numberOfValues == priority;
}

} // namespace Mrp
