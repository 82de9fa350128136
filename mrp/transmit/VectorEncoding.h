// The encoder's free functions: an attribute into the bytes of a frame under construction.
//
// All work in place in the packet's body buffer, on the message and the vector that the context
// points to; what the encoder needs to remember it reads back out of the frame. No room is checked
// here: the frame-full test after each attribute leaves a margin of 64 bytes, and the largest step
// takes 43.
#pragma once

#include "mrp/transmit/MrpTxPacketContext.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

// Close the current message's attribute list, if there is one, and open the next message, with
// curVector where its first vector goes. For a type that the application lacks the header's type
// and length stay unwritten.
void mrpCreateNewMsrpHeader( MrpTxPacketContext & packetContext, MsrpAttrType attrType );
void mrpCreateNewMvrpHeader( MrpTxPacketContext & packetContext, MvrpAttrType attrType );

// Add one event, and a listener's declaration, to the vector at curVector; the bytes added.
U8 mrpPackThreePackedEvent( MrpTxPacketContext & packetContext, U8 attributeType, U8 event,
                            U8 application );
U8 mrpPackThreeAndFourPackedEvent( MrpTxPacketContext & packetContext, U8 event,
                                   MsrpListenerEvent listenerEvent );

// Write the eventNum-th event, counted from 1, into a packed area. Its neighbours in the byte keep
// what the byte held.
void mrpEncodeThreePackedEvent( U8 * vector, U8 event, U16 eventNum );
void mrpEncodeFourPackedEvent( U8 * vector, MsrpListenerEvent event, U16 eventNum );

// Bytes in the frame so far, header and final EndMarks apart.
U16 msrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext );
U16 mvrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext );
U16 mrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext, U8 application );

void nullAttribute( U8 * buffer, U8 length );

} // namespace Mrp
