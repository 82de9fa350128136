// Events into the packed areas behind a vector's FirstValue, one at a time.
//
// The vector's own header says how many values it has, and so where the next event goes.
#include "mrp/transmit/VectorEncoding.h"
#include "mrp/vocabulary/VectorFormat.h"

#include <cstring>

namespace Mrp {

namespace {

// NumberOfValues := n, the LeaveAll bit as it stands.
void numberOfValuesIs( U8 * vector, U32 n ) {
   U16 const header = Korv::networkU16At( vector );
   Korv::networkU16IsAt( vector, static_cast< U16 >( ( header & leaveAllBit ) | n ) );
}

} // namespace

void mrpEncodeThreePackedEvent( U8 * vector, U8 event, U16 eventNum ) {
   U32 const k = eventNum - 1u;
   U8 & byte = vector[k / eventsPerThreePackedByte];
   U32 packed = 0;
   switch ( k % eventsPerThreePackedByte ) {
   case 0: packed = event * 36u + byte % 36u; break;
   case 1: packed = byte / 36u * 36u + event * 6u + byte % 6u; break;
   case 2: packed = byte / 6u * 6u + event; break;
   }
   byte = static_cast< U8 >( packed );
}

void mrpEncodeFourPackedEvent( U8 * vector, MsrpListenerEvent event, U16 eventNum ) {
   U32 const k = eventNum - 1u;
   U8 & byte = vector[k / eventsPerFourPackedByte];
   U32 const shift = 6 - 2 * ( k % eventsPerFourPackedByte );
   byte = static_cast< U8 >( ( byte & ~( 3u << shift ) ) | ( ( event & 3u ) << shift ) );
}

U8 mrpPackThreePackedEvent( MrpTxPacketContext & packetContext, U8 attributeType, U8 event,
                            U8 application ) {
   U8 * const vector = packetContext.curVector();
   U16 const n = mrpGetNumOfValues( vector );
   U8 * const packed =
      vector + vectorHeaderBytes + mrpSizeOfAttribute( attributeType, application );
   mrpEncodeThreePackedEvent( packed, event, static_cast< U16 >( n + 1 ) );
   numberOfValuesIs( vector, n + 1u );
   // A byte newly begun is not cleared: its unused digits keep what the buffer held.
   return n % eventsPerThreePackedByte == 0 ? 1 : 0;
}

// The FourPackedEvents stand right behind the ThreePackedEvents, and move when those grow. The new
// one is written first, where the area stands for the old number of values.
U8 mrpPackThreeAndFourPackedEvent( MrpTxPacketContext & packetContext, U8 event,
                                   MsrpListenerEvent listenerEvent ) {
   U8 * const vector = packetContext.curVector();
   U16 const n = mrpGetNumOfValues( vector );
   U8 * const three = vector + vectorHeaderBytes + sizeof( MsrpListenerStreamAttribute );
   U8 * const four = three + packedBytes( n, eventsPerThreePackedByte );
   mrpEncodeFourPackedEvent( four, listenerEvent, static_cast< U16 >( n + 1 ) );
   U8 added = n % eventsPerFourPackedByte == 0 ? 1 : 0;
   if ( n % eventsPerThreePackedByte == 0 ) {
      std::memmove( four + 1, four, n / eventsPerFourPackedByte + 1u );
      *four = 0;
      ++added;
   }
   mrpEncodeThreePackedEvent( three, event, static_cast< U16 >( n + 1 ) );
   numberOfValuesIs( vector, n + 1u );
   return added;
}

} // namespace Mrp
