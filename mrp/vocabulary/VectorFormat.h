// The fields of a VectorAttribute that are no record: the bits of its header, the bytes that its
// events take, and the size of a FirstValue by application and type.
#pragma once

#include "mrp/vocabulary/Foundation.h"
#include "mrp/vocabulary/MrpEnums.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <array>

namespace Mrp {

inline constexpr U32 vectorHeaderBytes = 2;
inline constexpr U32 endMarkBytes = 2; // of a list and of the MRPDU

// Of a VectorHeader. Bit 13 alone decides LeaveAll; bits 15 and 14 mean nothing.
inline constexpr U16 leaveAllBit = 0x2000;
inline constexpr U16 numberOfValuesMask = 0x1FFF;

inline constexpr U32 eventsPerThreePackedByte = 3;
inline constexpr U32 eventsPerFourPackedByte = 4;

// The bytes that n events take.
constexpr U32 packedBytes( U32 n, U32 perByte ) { return ( n + perByte - 1 ) / perByte; }

// A vector is named by the address of its VectorHeader.
inline U16 mrpGetNumOfValues( void const * vector ) {
   return Korv::networkU16At( vector ) & numberOfValuesMask;
}

// All bytes of an MVRP vector; 0 for one of no values and no LeaveAll, which is no vector.
inline U16 mvrpGetSizeOfVector( void const * vector ) {
   U16 const header = Korv::networkU16At( vector );
   U32 const n = header & numberOfValuesMask;
   if ( n == 0 && ( header & leaveAllBit ) == 0 ) {
      return 0;
   }
   return static_cast< U16 >( vectorHeaderBytes + sizeof( MvrpVlanAttribute ) +
                              packedBytes( n, eventsPerThreePackedByte ) );
}

// Bytes of a FirstValue, by AttributeType.
inline constexpr std::array< U8, 5 > msrpAttributeSizes{
   0, sizeof( MsrpTalkerAdvertiseAttribute ), sizeof( MsrpTalkerFailedAttribute ),
   sizeof( MsrpListenerStreamAttribute ), sizeof( MsrpDomainAttribute ) };
inline constexpr std::array< U8, 2 > mvrpAttributeSizes{ 0, sizeof( MvrpVlanAttribute ) };

// Attribute types run from 1 to this number.
constexpr U8 mrpNumberOfTypes( MrpApplication application ) {
   switch ( application ) {
   case MSRP: return msrpAttributeSizes.size() - 1;
   case MVRP: return mvrpAttributeSizes.size() - 1;
   default: return 0;
   }
}

// Trace the number, and give 0: observability/SizeTraces.cpp.
U8 invalidAttributeTypeSize( U8 attributeType );
U8 invalidApplicationSize( U32 application );

template < std::size_t types >
inline U8 sizeOfAttribute( std::array< U8, types > const & sizes, U8 attributeType ) {
   if ( attributeType == 0 || attributeType >= types ) [[unlikely]] {
      return invalidAttributeTypeSize( attributeType );
   }
   return sizes[attributeType];
}

inline U8 mrpSizeOfMsrpAttribute( U8 attributeType ) {
   return sizeOfAttribute( msrpAttributeSizes, attributeType );
}
inline U8 mrpSizeOfMvrpAttribute( U8 attributeType ) {
   return sizeOfAttribute( mvrpAttributeSizes, attributeType );
}

// 0 for a type or an application that is none. The application is a MrpApplication's number.
inline U8 mrpSizeOfAttribute( U8 attributeType, U32 application ) {
   switch ( application ) {
   case MSRP: return mrpSizeOfMsrpAttribute( attributeType );
   case MVRP: return mrpSizeOfMvrpAttribute( attributeType );
   default: return invalidApplicationSize( application );
   }
}

} // namespace Mrp
