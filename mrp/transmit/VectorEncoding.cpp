// An attribute in a Tx field becomes bytes in the interface's open frame.
//
// It extends the open vector if it is the next value of it, else opens a further vector in the
// open message, else a new message. Merging looks at stream id and address, at class and priority,
// or at the VLAN alone: what else a value holds does not reach the wire when it joins a vector.
// The order of the attributes is the order in which the machines ran; nothing is sorted here.
#include "mrp/transmit/VectorEncoding.h"

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/transmit/OpenFrame.h"
#include "mrp/vocabulary/VectorFormat.h"

#include <cstring>

namespace Mrp {

namespace {

MsrpMessageHeader & msrpHeader( U8 * message ) {
   return *reinterpret_cast< MsrpMessageHeader * >( message );
}
MvrpMessageHeader & mvrpHeader( U8 * message ) {
   return *reinterpret_cast< MvrpMessageHeader * >( message );
}

U8 * body( MrpTxPacketContext const & context ) {
   return context.pkt() ? context.pkt()->frontData() : nullptr;
}

// Where the next vector of the open MSRP message goes.
U8 * endOfMsrpList( U8 * message ) {
   return message + sizeof( MsrpMessageHeader ) + msrpHeader( message ).attributeListLength();
}

void addToMsrpListLength( U8 * message, U32 bytes ) {
   MsrpMessageHeader & header = msrpHeader( message );
   header.attributeListLengthIs( static_cast< U16 >( header.attributeListLength() + bytes ) );
}

} // namespace

void nullAttribute( U8 * buffer, U8 length ) { std::memset( buffer, 0, length ); }

namespace {

template < class AttrType >
void invalidAttributeToEncode( AttrType attrType ) {
   trace( 8, " Invalid Attribute ", attrType, " to be encoded" );
   Sornlog::log( Ring::invalidAttributeToEncode, static_cast< U8 >( attrType ) );
}

} // namespace

void mrpCreateNewMsrpHeader( MrpTxPacketContext & packetContext, MsrpAttrType attrType ) {
   U8 * message = packetContext.curMessage();
   if ( message ) {
      U8 * const endMark = endOfMsrpList( message );
      Korv::networkU16IsAt( endMark, endOfMark );
      addToMsrpListLength( message, endMarkBytes );
      message = endMark + endMarkBytes;
   } else {
      message = body( packetContext );
   }
   packetContext.curMessageIs( message );
   msrpHeader( message ).attributeListLengthIs( 0 );
   packetContext.curVectorIs( message + sizeof( MsrpMessageHeader ) );
   if ( attrType == invalidAttribute || attrType > domainVector ) {
      invalidAttributeToEncode( attrType );
      return;
   }
   U8 const type = static_cast< U8 >( attrType );
   msrpHeader( message ).attributeTypeIs( type );
   msrpHeader( message ).attributeLengthIs( mrpSizeOfMsrpAttribute( type ) );
}

// The EndMark's place is the message's start and the size of the last vector: the end of the list
// when the message holds one vector. When it holds several, EndMark and new message land inside
// them, and the frame loses the tail of what was encoded.
void mrpCreateNewMvrpHeader( MrpTxPacketContext & packetContext, MvrpAttrType attrType ) {
   U8 * message = packetContext.curMessage();
   if ( message ) {
      U16 const size = mvrpGetSizeOfVector( packetContext.curVector() );
      U8 * const endMark = message + sizeof( MvrpMessageHeader ) + size;
      Korv::networkU16IsAt( endMark, endOfMark );
      message = endMark + endMarkBytes;
   } else {
      message = body( packetContext );
   }
   packetContext.curMessageIs( message );
   packetContext.curVectorIs( message + sizeof( MvrpMessageHeader ) );
   if ( attrType != vlanVector ) {
      invalidAttributeToEncode( attrType );
      return;
   }
   mvrpHeader( message ).attributeTypeIs( static_cast< U8 >( attrType ) );
   mvrpHeader( message ).attributeLengthIs( sizeof( MvrpVlanAttribute ) );
}

namespace {

template < class Kind >
constexpr bool isMsrp = Kind::application == MSRP;

template < class Kind >
void createNewHeader( MrpTxPacketContext & context ) {
   if constexpr ( isMsrp< Kind > ) {
      mrpCreateNewMsrpHeader( context, static_cast< MsrpAttrType >( Kind::type ) );
   } else {
      mrpCreateNewMvrpHeader( context, static_cast< MvrpAttrType >( Kind::type ) );
   }
}

// Writes a vector of one value, or a null vector for a LeaveAll alone, at curVector; its bytes.
template < class Kind >
U32 encodeVector( MrpTxPacketContext const & packetContext, MrpParseContext & context,
                  typename Kind::Value const & value, U8 event ) {
   using FirstValue = typename Kind::FirstValue;
   U8 * const vector = packetContext.curVector();
   U8 * const first = vector + vectorHeaderBytes;
   if ( event == lvAllEvent ) {
      Korv::networkU16IsAt( vector, leaveAllBit );
      nullAttribute( first, sizeof( FirstValue ) );
      return vectorHeaderBytes + sizeof( FirstValue );
   }
   bool const mark = context.sendTxLvAll();
   if constexpr ( std::is_same_v< Kind, TalkerFailedKind > ) {
      trace( 7, " Talker Failed xxx in encode, sendTxLvAll= ", mark );
   }
   U16 const header = mark ? leaveAllBit | 1 : 1;
   Korv::networkU16IsAt( vector, header );
   if ( mark ) {
      // Taken by a new vector, and never by an extension.
      context.sendTxLvAllIs( false );
      if constexpr ( std::is_same_v< Kind, TalkerFailedKind > ) {
         trace( 7, " Encoded to true. Vector header = ", header );
      }
   }
   FirstValue const wire = Kind::first( value );
   std::memcpy( first, &wire, sizeof wire );
   U8 * const events = first + sizeof wire;
   events[0] = 0;
   mrpEncodeThreePackedEvent( events, event, 1 );
   if constexpr ( Kind::fourPacked ) {
      events[1] = 0;
      mrpEncodeFourPackedEvent( events + 1, value.listenerEvent(), 1 );
      return vectorHeaderBytes + sizeof wire + 2;
   }
   return vectorHeaderBytes + sizeof wire + 1;
}

// Whether the value is the next one of the vector at curVector.
template < class Kind >
bool extendsCurVector( MrpTxPacketContext const & packetContext,
                       typename Kind::Value const & value ) {
   typename Kind::FirstValue first;
   std::memcpy( &first, packetContext.curVector() + vectorHeaderBytes, sizeof first );
   return Kind::inSequence( first, value, mrpGetNumOfValues( packetContext.curVector() ) );
}

template < class Kind >
U32 packEvent( MrpTxPacketContext & packetContext, typename Kind::Value const & value, U8 event ) {
   if constexpr ( Kind::fourPacked ) {
      return mrpPackThreeAndFourPackedEvent( packetContext, event, value.listenerEvent() );
   } else {
      return mrpPackThreePackedEvent( packetContext, Kind::type, event, Kind::application );
   }
}

// The one way of adding an attribute to a frame.
template < class Kind >
void addToFrame( MrpLib & lib, U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   MrpTxPacketContext & packetContext = *openFrame( lib, intfId, secondPktContext );
   MrpParseContext & context = *lib.mrpSm()->parseContext();
   typename Kind::Value const & value = ( lib.*Kind::tx )();
   trace( 8, "mrpSend ", Kind::application, " type ", Kind::type, " on ", intfId,
          " event = ", event, " value = ", value );

   // A LeaveAll null vector opens a message even inside a message of its own type.
   U8 const * const message = packetContext.curMessage();
   bool const joinsMessage = message && event != lvAllEvent && message[0] == Kind::type;
   U32 added = 0;
   if ( joinsMessage && extendsCurVector< Kind >( packetContext, value ) ) {
      added = packEvent< Kind >( packetContext, value, event );
   } else {
      if ( !joinsMessage ) {
         createNewHeader< Kind >( packetContext );
      } else if constexpr ( isMsrp< Kind > ) {
         packetContext.curVectorIs( endOfMsrpList( packetContext.curMessage() ) );
      } else {
         packetContext.curVectorIs( packetContext.curVector() +
                                    mvrpGetSizeOfVector( packetContext.curVector() ) );
      }
      added = encodeVector< Kind >( packetContext, context, value, event );
   }
   if constexpr ( isMsrp< Kind > ) {
      U8 * const current = packetContext.curMessage();
      if constexpr ( std::is_same_v< Kind, TalkerAdvertiseKind > ) {
         trace( 8, " Cur Attribute List Length encoded = ",
                msrpHeader( current ).attributeListLength(), " Added bytes = ", added );
      }
      addToMsrpListLength( current, added );
      if constexpr ( std::is_same_v< Kind, TalkerAdvertiseKind > ) {
         trace( 8, " Updated Attribute List Length encoded = ",
                msrpHeader( current ).attributeListLength() );
      }
   }
   packetContext.currentAttrTypeIs( Kind::type );
}

} // namespace

void MrpLib::mrpSendTalkerAdvertise( U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   addToFrame< TalkerAdvertiseKind >( *this, event, intfId, secondPktContext );
}
void MrpLib::mrpSendTalkerFailed( U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   addToFrame< TalkerFailedKind >( *this, event, intfId, secondPktContext );
}
void MrpLib::mrpSendListenerVector( U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   addToFrame< ListenerKind >( *this, event, intfId, secondPktContext );
}
void MrpLib::mrpSendDomainVector( U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   addToFrame< DomainKind >( *this, event, intfId, secondPktContext );
}
void MrpLib::mrpSendVlanVector( U8 event, Pelk::IntfId intfId, bool secondPktContext ) {
   addToFrame< VlanKind >( *this, event, intfId, secondPktContext );
}

U32 MrpLib::mrpEncodeTalkerVector( MrpTxPacketContext & packetContext,
                                   MsrpTalkerAdvertiseAttribute const & talkerAdvertiseValue,
                                   U8 event ) {
   return encodeVector< TalkerAdvertiseKind >( packetContext, *mrpSm_->parseContext(),
                                               talkerAdvertiseValue, event );
}
U32 MrpLib::mrpEncodeTalkerFailedVector( MrpTxPacketContext & packetContext,
                                         MsrpTalkerFailedAttribute const & talkerFailedValue,
                                         U8 event ) {
   return encodeVector< TalkerFailedKind >( packetContext, *mrpSm_->parseContext(),
                                            talkerFailedValue, event );
}
U32 MrpLib::mrpEncodeListenerVector( MrpTxPacketContext & packetContext,
                                     MsrpListenerAttribute const & listenerValue, U8 event ) {
   return encodeVector< ListenerKind >( packetContext, *mrpSm_->parseContext(), listenerValue,
                                        event );
}
U32 MrpLib::mrpEncodeDomainVector( MrpTxPacketContext & packetContext,
                                   MsrpDomainAttribute const & domainValue, U8 event ) {
   return encodeVector< DomainKind >( packetContext, *mrpSm_->parseContext(), domainValue, event );
}
U32 MrpLib::mrpEncodeVlanVector( MrpTxPacketContext & packetContext,
                                 MvrpVlanAttribute const & vlanValue, U8 event ) {
   return encodeVector< VlanKind >( packetContext, *mrpSm_->parseContext(), vlanValue, event );
}

U16 msrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext ) {
   U8 const * const start = body( packetContext );
   U8 * const message = packetContext.curMessage();
   return start && message ? static_cast< U16 >( endOfMsrpList( message ) - start ) : U16{ 0 };
}

U16 mvrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext ) {
   U8 const * const start = body( packetContext );
   U8 const * const vector = packetContext.curVector();
   return start && vector ? static_cast< U16 >( vector + mvrpGetSizeOfVector( vector ) - start )
                          : U16{ 0 };
}

U16 mrpGetNumOfPackedBytes( MrpTxPacketContext const & packetContext, U8 application ) {
   switch ( application ) {
   case MSRP: return msrpGetNumOfPackedBytes( packetContext );
   case MVRP: return mvrpGetNumOfPackedBytes( packetContext );
   default: return 0;
   }
}

} // namespace Mrp
