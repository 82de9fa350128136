// The five attribute kinds, each described once.
//
// Parser, decoder, encoder, database and dispatch all read these descriptions; a sixth kind is one
// more struct here, its record in the vocabulary and its pair of fields in MrpLib.
//
// A kind says
//    application, type     what names it on the wire and in the database
//    Value                 its record in memory, of which the database keeps the bytes
//    FirstValue            its record on the wire, where a vector starts
//    fourPacked            whether FourPackedEvents follow the ThreePackedEvents
//    rx, tx, rxIs, txIs    its fields in MrpLib and their virtual mutators
//    key( value )          the attribute's key in the database
//    next( value )         the value one step on in a vector
//    inSequence( first, value, n )  whether the value is the n-th behind the first of a vector
//    first( value )        what goes on the wire of a value
//    received( first )     the value that a FirstValue read from the wire stands for
#pragma once

#include "mrp/frame/MrpLib.h"

#include <tuple>

namespace Mrp {

// The next talker of a vector: streamId + 1, and dmac + 1 as a 48-bit number.
MsrpTalkerAdvertiseAttribute
mrpIncrementTalkerAttribute( MsrpTalkerAdvertiseAttribute const & value );

// Whether the value is as many steps on from the first as the vector has values already. Only the
// fields that step are looked at. A stream id may wrap around; an address that would go beyond 48
// bits, a class or a priority that would go beyond 8, is in no sequence.
bool mrpTalkerValueInSequence( U64 firstStreamId, U64 streamId, Pelk::EthAddr const & firstDmac,
                               Pelk::EthAddr const & dmac, U16 numberOfValues );
bool mrpDomainValueInSequence( U8 firstClassId, U8 classId, U8 firstPriority, U8 priority,
                               U16 numberOfValues );

// A listener apart, what goes on the wire is the record as it stands in memory.
template < class V >
struct SameOnTheWire {
   using Value = V;
   using FirstValue = V;
   static constexpr bool fourPacked = false;
   static FirstValue const & first( Value const & value ) { return value; }
   static Value const & received( FirstValue const & wire ) { return wire; }
};

struct VlanKind : SameOnTheWire< MvrpVlanAttribute > {
   static constexpr MrpApplication application = MVRP;
   static constexpr U8 type = vlanVector;
   static constexpr auto rx = &MrpLib::mvrpVlanVectorRx;
   static constexpr auto tx = &MrpLib::mvrpVlanVectorTx;
   static constexpr auto rxIs = &MrpLib::mvrpVlanVectorRxIs;
   static constexpr auto txIs = &MrpLib::mvrpVlanVectorTxIs;

   static U64 key( Value const & value ) { return value.vlanId(); }
   static Value next( Value const & value ) {
      return Value( static_cast< U16 >( value.vlanId() + 1 ) );
   }
   static bool inSequence( FirstValue const & first, Value const & value, U16 n ) {
      return U32{ first.vlanId() } + n == value.vlanId();
   }
};

struct TalkerAdvertiseKind : SameOnTheWire< MsrpTalkerAdvertiseAttribute > {
   static constexpr MrpApplication application = MSRP;
   static constexpr U8 type = talkerAdvertise;
   static constexpr auto rx = &MrpLib::msrpTalkerAdvertiseRx;
   static constexpr auto tx = &MrpLib::msrpTalkerAdvertiseTx;
   static constexpr auto rxIs = &MrpLib::msrpTalkerAdvertiseRxIs;
   static constexpr auto txIs = &MrpLib::msrpTalkerAdvertiseTxIs;

   static U64 key( Value const & value ) { return value.streamId(); }
   static Value next( Value const & value ) { return mrpIncrementTalkerAttribute( value ); }
   static bool inSequence( FirstValue const & first, Value const & value, U16 n ) {
      return mrpTalkerValueInSequence( first.streamId(), value.streamId(), first.frame().dmac(),
                                       value.frame().dmac(), n );
   }
   // The low four bits of priorityAndRank are dropped.
   static Value received( FirstValue const & wire ) {
      Value value = wire;
      value.priorityAndRankIs( PriorityAndRank::fromWire( wire.priorityAndRank().value() ) );
      return value;
   }
};

struct TalkerFailedKind : SameOnTheWire< MsrpTalkerFailedAttribute > {
   static constexpr MrpApplication application = MSRP;
   static constexpr U8 type = talkerFailed;
   static constexpr auto rx = &MrpLib::msrpTalkerFailedRx;
   static constexpr auto tx = &MrpLib::msrpTalkerFailedTx;
   static constexpr auto rxIs = &MrpLib::msrpTalkerFailedRxIs;
   static constexpr auto txIs = &MrpLib::msrpTalkerFailedTxIs;

   static U64 key( Value const & value ) { return value.talkerAdvertiseAttribute().streamId(); }
   static Value next( Value const & value ) {
      return Value( mrpIncrementTalkerAttribute( value.talkerAdvertiseAttribute() ),
                    value.failureInformation() );
   }
   static bool inSequence( FirstValue const & first, Value const & value, U16 n ) {
      return TalkerAdvertiseKind::inSequence( first.talkerAdvertiseAttribute(),
                                              value.talkerAdvertiseAttribute(), n );
   }
   static Value received( FirstValue const & wire ) {
      return Value( TalkerAdvertiseKind::received( wire.talkerAdvertiseAttribute() ),
                    wire.failureInformation() );
   }
};

struct ListenerKind {
   static constexpr MrpApplication application = MSRP;
   static constexpr U8 type = listenerVector;
   using Value = MsrpListenerAttribute;
   using FirstValue = MsrpListenerStreamAttribute;
   static constexpr bool fourPacked = true;
   static constexpr auto rx = &MrpLib::msrpListenerVectorRx;
   static constexpr auto tx = &MrpLib::msrpListenerVectorTx;
   static constexpr auto rxIs = &MrpLib::msrpListenerVectorRxIs;
   static constexpr auto txIs = &MrpLib::msrpListenerVectorTxIs;

   static U64 key( Value const & value ) { return value.streamId(); }
   static Value next( Value const & value ) {
      return Value( value.streamId() + 1, value.listenerEvent() );
   }
   static bool inSequence( FirstValue const & first, Value const & value, U16 n ) {
      return first.streamId() + n == value.streamId();
   }
   static FirstValue first( Value const & value ) { return FirstValue( value.streamId() ); }
   static Value received( FirstValue const & wire ) { return Value( wire.streamId(), ignore ); }
};

struct DomainKind : SameOnTheWire< MsrpDomainAttribute > {
   static constexpr MrpApplication application = MSRP;
   static constexpr U8 type = domainVector;
   static constexpr auto rx = &MrpLib::msrpDomainVectorRx;
   static constexpr auto tx = &MrpLib::msrpDomainVectorTx;
   static constexpr auto rxIs = &MrpLib::msrpDomainVectorRxIs;
   static constexpr auto txIs = &MrpLib::msrpDomainVectorTxIs;

   // The class alone: two domains of one class are one attribute.
   static U64 key( Value const & value ) { return value.srClassId(); }
   // The VID stays, by design: the domains of one vector share it.
   static Value next( Value const & value ) {
      return Value( static_cast< U8 >( value.srClassId() + 1 ),
                    static_cast< U8 >( value.srClassPriority() + 1 ), value.srClassVID() );
   }
   static bool inSequence( FirstValue const & first, Value const & value, U16 n ) {
      return mrpDomainValueInSequence( first.srClassId(), value.srClassId(),
                                       first.srClassPriority(), value.srClassPriority(), n );
   }
};

using AttributeKinds =
   std::tuple< VlanKind, TalkerAdvertiseKind, TalkerFailedKind, ListenerKind, DomainKind >;

// Calls f( Kind{} ) for the kind of that number; false, with no call, if the application has none.
template < class F >
inline bool withAttributeKind( MrpApplication application, U8 attributeType, F && f ) {
   return std::apply(
      [&]( auto... kind ) {
         return ( ( decltype( kind )::application == application &&
                    decltype( kind )::type == attributeType && ( f( kind ), true ) ) ||
                  ... );
      },
      AttributeKinds{} );
}

// Stands for a type that the application does not have.
struct NoKind {};

template < class F >
inline void withAttributeKindOrNone( MrpApplication application, U8 attributeType, F && f ) {
   if ( !withAttributeKind( application, attributeType, f ) ) {
      f( NoKind{} );
   }
}

} // namespace Mrp
