// The records of MSRP (IEEE 802.1Q, 35.2.2), byte for byte as on the wire; accessors give and take
// host numbers.
//
// None of the numbers is interpreted here: the bytes received are the values.
#pragma once

#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/vocabulary/Foundation.h"
#include "mrp/vocabulary/MrpEnums.h"
#include "mrp/vocabulary/VectorRecord.h"
#include "mrp/vocabulary/WireRecord.h"

#include <compare>

namespace Mrp {

// Where a stream's frames go: their destination address and VLAN.
//
//    0                6      8
//    +----...---------+------+
//    | dmac           | VLAN |
//    +----...---------+------+
class DataFrameParameters {
 public:
   DataFrameParameters() = default;
   DataFrameParameters( Pelk::EthAddr const & dmac, U16 vlanId )
      : dmac_( dmac ), vlanId_( vlanId ) {}

   Pelk::EthAddr const & dmac() const { return dmac_; }
   void dmacIs( Pelk::EthAddr const & dmac ) { dmac_ = dmac; }
   U16 vlanId() const { return vlanId_; }
   void vlanIdIs( U16 vlanId ) { vlanId_ = vlanId; }

   bool operator==( DataFrameParameters const & ) const = default;

 private:
   Pelk::EthAddr dmac_;
   Korv::NetworkOrder< U16 > vlanId_;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::DataFrameParameters", Korv::field( "dmac", &DataFrameParameters::dmac_ ),
                    Korv::field( "vlanId", &DataFrameParameters::vlanId_ ) );
};
static_assert( NamedWireRecord< DataFrameParameters, 8 > );

// What a stream needs: the bytes of its largest frame, and how many frames it sends at most in one
// class measurement interval.
//
//    0              2                   4
//    +--------------+-------------------+
//    | maxFrameSize | maxIntervalFrames |
//    +--------------+-------------------+
class Tspec {
 public:
   Tspec() = default;
   Tspec( U16 maxFrameSize, U16 maxIntervalFrames )
      : maxFrameSize_( maxFrameSize ), maxIntervalFrames_( maxIntervalFrames ) {}

   U16 maxFrameSize() const { return maxFrameSize_; }
   void maxFrameSizeIs( U16 maxFrameSize ) { maxFrameSize_ = maxFrameSize; }
   U16 maxIntervalFrames() const { return maxIntervalFrames_; }
   void maxIntervalFramesIs( U16 maxIntervalFrames ) { maxIntervalFrames_ = maxIntervalFrames; }

   bool operator==( Tspec const & ) const = default;

 private:
   Korv::NetworkOrder< U16 > maxFrameSize_;
   Korv::NetworkOrder< U16 > maxIntervalFrames_;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::Tspec", Korv::field( "maxFrameSize", &Tspec::maxFrameSize_ ),
                    Korv::field( "maxIntervalFrames", &Tspec::maxIntervalFrames_ ) );
};
static_assert( NamedWireRecord< Tspec, 4 > );

// The priority of a stream's frames, and its rank: of streams that do not all fit through a port,
// those of rank 0 come first.
//
//    7    5   4    3       0
//    +-------+------+-----------+
//    | prio  | rank | undefined |
//    +-------+------+-----------+
//
// A byte that was overlaid on a frame may hold undefined bits; fromWire and reading from text
// rebuild it from priority and rank, so that those bits are never repeated on transmit. Compares
// as the whole byte.
class PriorityAndRank {
 public:
   PriorityAndRank() = default;
   PriorityAndRank( U8 priority, bool rank )
      : value_( static_cast< U8 >( priority << 5 | ( rank ? rankBit : 0 ) ) ) {}
   static PriorityAndRank fromWire( U8 value ) {
      return PriorityAndRank( static_cast< U8 >( value >> 5 ), ( value & rankBit ) != 0 );
   }

   U8 value() const { return value_; }
   U8 priority() const { return static_cast< U8 >( value_ >> 5 ); }
   bool rank() const { return ( value_ & rankBit ) != 0; }
   U8 undefined() const { return value_ & 0x0F; }

   auto operator<=>( PriorityAndRank const & ) const = default;

   static PriorityAndRank textRead( Korv::TextReader & in ) {
      return fromWire( Korv::textReadField< U8 >( in, "value" ) );
   }

 private:
   static constexpr U8 rankBit = 0x10;

   U8 value_ = 0;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::PriorityAndRank", Korv::field( "value", &PriorityAndRank::value_ ) );
};
static_assert( NamedWireRecord< PriorityAndRank, 1 > );

// AttributeType 1: a talker has a stream, and all bridges on the way could reserve for it.
//
//    0           8        16       20              21                   25
//    +----...----+--...--+-------+-----------------+--------------------+
//    | streamId  | frame | tSpec | priorityAndRank | accumulatedLatency |
//    +----...----+--...--+-------+-----------------+--------------------+
class MsrpTalkerAdvertiseAttribute {
 public:
   MsrpTalkerAdvertiseAttribute() = default;
   MsrpTalkerAdvertiseAttribute( U64 streamId, DataFrameParameters const & frame,
                                 Tspec const & tSpec, PriorityAndRank priorityAndRank,
                                 U32 accumulatedLatency )
      : streamId_( streamId ), frame_( frame ), tSpec_( tSpec ),
        priorityAndRank_( priorityAndRank ), accumulatedLatency_( accumulatedLatency ) {}

   U64 streamId() const { return streamId_; }
   void streamIdIs( U64 streamId ) { streamId_ = streamId; }
   DataFrameParameters const & frame() const { return frame_; }
   void frameIs( DataFrameParameters const & frame ) { frame_ = frame; }
   Tspec const & tSpec() const { return tSpec_; }
   void tSpecIs( Tspec const & tSpec ) { tSpec_ = tSpec; }
   PriorityAndRank priorityAndRank() const { return priorityAndRank_; }
   void priorityAndRankIs( PriorityAndRank priorityAndRank ) { priorityAndRank_ = priorityAndRank; }
   U32 accumulatedLatency() const { return accumulatedLatency_; }
   void accumulatedLatencyIs( U32 latency ) { accumulatedLatency_ = latency; }

   bool operator==( MsrpTalkerAdvertiseAttribute const & ) const = default;

 private:
   using Self = MsrpTalkerAdvertiseAttribute;

   Korv::NetworkOrder< U64 > streamId_;
   DataFrameParameters frame_;
   Tspec tSpec_;
   PriorityAndRank priorityAndRank_;
   Korv::NetworkOrder< U32 > accumulatedLatency_;

 public:
   static constexpr auto record = Korv::record(
      "Mrp::MsrpTalkerAdvertiseAttribute", Korv::field( "streamId", &Self::streamId_ ),
      Korv::field( "frame", &Self::frame_ ), Korv::field( "tSpec", &Self::tSpec_ ),
      Korv::field( "priorityAndRank", &Self::priorityAndRank_ ),
      Korv::field( "accumulatedLatency", &Self::accumulatedLatency_ ) );
};
static_assert( NamedWireRecord< MsrpTalkerAdvertiseAttribute, 25 > );

// Which bridge could not reserve for a stream, and why.
//
//    0               8      9
//    +------...------+------+
//    | bridgeId      | code |
//    +------...------+------+
class FailureInformation {
 public:
   FailureInformation() = default;
   FailureInformation( U64 bridgeId, U8 failureCode )
      : bridgeId_( bridgeId ), failureCode_( failureCode ) {}

   U64 bridgeId() const { return bridgeId_; }
   void bridgeIdIs( U64 bridgeId ) { bridgeId_ = bridgeId; }
   U8 failureCode() const { return failureCode_; }
   void failureCodeIs( U8 failureCode ) { failureCode_ = failureCode; }

   bool operator==( FailureInformation const & ) const = default;

 private:
   Korv::NetworkOrder< U64 > bridgeId_;
   U8 failureCode_ = 0;

 public:
   static constexpr auto record = Korv::record(
      "Mrp::FailureInformation", Korv::field( "bridgeId", &FailureInformation::bridgeId_ ),
      Korv::field( "failureCode", &FailureInformation::failureCode_ ) );
};
static_assert( NamedWireRecord< FailureInformation, 9 > );

// AttributeType 2: a talker has a stream, and a bridge on the way could not reserve for it.
//
//    0                           25                   34
//    +------------...------------+---------...--------+
//    | talkerAdvertiseAttribute  | failureInformation |
//    +------------...------------+---------...--------+
class MsrpTalkerFailedAttribute {
 public:
   MsrpTalkerFailedAttribute() = default;
   MsrpTalkerFailedAttribute( MsrpTalkerAdvertiseAttribute const & talkerAdvertiseAttribute,
                              FailureInformation const & failureInformation )
      : talkerAdvertiseAttribute_( talkerAdvertiseAttribute ),
        failureInformation_( failureInformation ) {}

   MsrpTalkerAdvertiseAttribute const & talkerAdvertiseAttribute() const {
      return talkerAdvertiseAttribute_;
   }
   void talkerAdvertiseAttributeIs( MsrpTalkerAdvertiseAttribute const & advertise ) {
      talkerAdvertiseAttribute_ = advertise;
   }
   FailureInformation const & failureInformation() const { return failureInformation_; }
   void failureInformationIs( FailureInformation const & information ) {
      failureInformation_ = information;
   }

   bool operator==( MsrpTalkerFailedAttribute const & ) const = default;

 private:
   using Self = MsrpTalkerFailedAttribute;

   MsrpTalkerAdvertiseAttribute talkerAdvertiseAttribute_;
   FailureInformation failureInformation_;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::MsrpTalkerFailedAttribute",
                    Korv::field( "talkerAdvertiseAttribute", &Self::talkerAdvertiseAttribute_ ),
                    Korv::field( "failureInformation", &Self::failureInformation_ ) );
};
static_assert( NamedWireRecord< MsrpTalkerFailedAttribute, 34 > );

// AttributeType 3: what a listener vector has as its FirstValue.
//
//    0               8
//    +------...------+
//    | streamId      |
//    +------...------+
class MsrpListenerStreamAttribute {
 public:
   MsrpListenerStreamAttribute() = default;
   explicit MsrpListenerStreamAttribute( U64 streamId ) : streamId_( streamId ) {}

   U64 streamId() const { return streamId_; }
   void streamIdIs( U64 streamId ) { streamId_ = streamId; }

   bool operator==( MsrpListenerStreamAttribute const & ) const = default;

 private:
   Korv::NetworkOrder< U64 > streamId_;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::MsrpListenerStreamAttribute",
                    Korv::field( "streamId", &MsrpListenerStreamAttribute::streamId_ ) );
};
static_assert( NamedWireRecord< MsrpListenerStreamAttribute, 8 > );

// A MsrpListenerEvent in memory: 32 bits, least significant byte first on every host, at any
// address. Not of the wire, where two bits of a FourPackedEvents byte hold it.
class StoredListenerEvent {
 public:
   StoredListenerEvent() = default;
   StoredListenerEvent( MsrpListenerEvent event ) { // NOLINT(google-explicit-constructor)
      for ( std::size_t i = 0; i < sizeof bytes_; ++i ) {
         bytes_[i] = static_cast< U8 >( static_cast< U32 >( event ) >> ( 8 * i ) );
      }
   }
   operator MsrpListenerEvent() const { // NOLINT(google-explicit-constructor)
      U32 event = 0;
      for ( std::size_t i = 0; i < sizeof bytes_; ++i ) {
         event |= static_cast< U32 >( bytes_[i] ) << ( 8 * i );
      }
      return static_cast< MsrpListenerEvent >( event );
   }
   bool operator==( StoredListenerEvent const & ) const = default;

   void textWrite( std::string & out ) const {
      out += stringValue( static_cast< MsrpListenerEvent >( *this ) );
   }
   static StoredListenerEvent textRead( Korv::TextReader & in ) {
      return Korv::textRead< MsrpListenerEvent >( in );
   }

 private:
   U8 bytes_[sizeof( MsrpListenerEvent )] = {};
};

// Of memory, not of the wire: a stream with its Declaration Type, which a vector carries apart from
// it in its FourPackedEvents.
//
//    0               8               12
//    +------...------+---------------+
//    | streamId      | listenerEvent |
//    +------...------+---------------+
class MsrpListenerAttribute {
 public:
   MsrpListenerAttribute() = default;
   MsrpListenerAttribute( U64 streamId, MsrpListenerEvent listenerEvent )
      : streamId_( streamId ), listenerEvent_( listenerEvent ) {}

   U64 streamId() const { return streamId_; }
   void streamIdIs( U64 streamId ) { streamId_ = streamId; }
   MsrpListenerEvent listenerEvent() const { return listenerEvent_; }
   void listenerEventIs( MsrpListenerEvent event ) { listenerEvent_ = event; }

   bool operator==( MsrpListenerAttribute const & ) const = default;

 private:
   Korv::NetworkOrder< U64 > streamId_;
   StoredListenerEvent listenerEvent_;

 public:
   static constexpr auto record = Korv::record(
      "Mrp::MsrpListenerAttribute", Korv::field( "streamId", &MsrpListenerAttribute::streamId_ ),
      Korv::field( "listenerEvent", &MsrpListenerAttribute::listenerEvent_ ) );
};
static_assert( NamedWireRecord< MsrpListenerAttribute, 12 > );

// AttributeType 4: the priority and the VLAN that a port uses for streams of one class.
//
//    0           1                 2            4
//    +-----------+-----------------+------------+
//    | srClassId | srClassPriority | srClassVID |
//    +-----------+-----------------+------------+
class MsrpDomainAttribute {
 public:
   MsrpDomainAttribute() = default;
   MsrpDomainAttribute( U8 srClassId, U8 srClassPriority, U16 srClassVID )
      : srClassId_( srClassId ), srClassPriority_( srClassPriority ), srClassVID_( srClassVID ) {}

   U8 srClassId() const { return srClassId_; }
   void srClassIdIs( U8 srClassId ) { srClassId_ = srClassId; }
   U8 srClassPriority() const { return srClassPriority_; }
   void srClassPriorityIs( U8 srClassPriority ) { srClassPriority_ = srClassPriority; }
   U16 srClassVID() const { return srClassVID_; }
   void srClassVIDIs( U16 srClassVID ) { srClassVID_ = srClassVID; }

   bool operator==( MsrpDomainAttribute const & ) const = default;

 private:
   U8 srClassId_ = 0;
   U8 srClassPriority_ = 0;
   Korv::NetworkOrder< U16 > srClassVID_;

 public:
   static constexpr auto record = Korv::record(
      "Mrp::MsrpDomainAttribute", Korv::field( "srClassId", &MsrpDomainAttribute::srClassId_ ),
      Korv::field( "srClassPriority", &MsrpDomainAttribute::srClassPriority_ ),
      Korv::field( "srClassVID", &MsrpDomainAttribute::srClassVID_ ) );
};
static_assert( NamedWireRecord< MsrpDomainAttribute, 4 > );

// The head of a Message.
//
//    0      1        2            4
//    +------+--------+------------+
//    | type | length | listLength |      length: bytes of one FirstValue
//    +------+--------+------------+      listLength: of what follows, the list's EndMark included
class MsrpMessageHeader {
 public:
   MsrpMessageHeader() = default;
   MsrpMessageHeader( U8 attributeType, U8 attributeLength, U16 attributeListLength )
      : attributeType_( attributeType ), attributeLength_( attributeLength ),
        attributeListLength_( attributeListLength ) {}

   U8 attributeType() const { return attributeType_; }
   void attributeTypeIs( U8 attributeType ) { attributeType_ = attributeType; }
   U8 attributeLength() const { return attributeLength_; }
   void attributeLengthIs( U8 attributeLength ) { attributeLength_ = attributeLength; }
   U16 attributeListLength() const { return attributeListLength_; }
   void attributeListLengthIs( U16 listLength ) { attributeListLength_ = listLength; }

   bool operator==( MsrpMessageHeader const & ) const = default;

 private:
   U8 attributeType_ = 0;
   U8 attributeLength_ = 0;
   Korv::NetworkOrder< U16 > attributeListLength_;
};
static_assert( WireRecord< MsrpMessageHeader, 4 > );

// A listener's first vector has one byte more on the wire: its first FourPackedEvents byte.
using MsrpTalkerVector = VectorRecord< MsrpTalkerAdvertiseAttribute >;
using MsrpTalkerFailedVector = VectorRecord< MsrpTalkerFailedAttribute >;
using MsrpListenerVector = VectorRecord< MsrpListenerStreamAttribute >;
using MsrpDomainVector = VectorRecord< MsrpDomainAttribute >;
static_assert( WireRecord< MsrpTalkerVector, 28 > );
static_assert( WireRecord< MsrpTalkerFailedVector, 37 > );
static_assert( WireRecord< MsrpListenerVector, 11 > );
static_assert( WireRecord< MsrpDomainVector, 7 > );

} // namespace Mrp
