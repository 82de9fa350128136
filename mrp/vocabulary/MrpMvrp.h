// The records of MVRP (IEEE 802.1Q, 11.2), byte for byte as on the wire; accessors give and take
// host numbers.
#pragma once

#include "mrp/vocabulary/Foundation.h"
#include "mrp/vocabulary/VectorRecord.h"
#include "mrp/vocabulary/WireRecord.h"

namespace Mrp {

//    0      2
//    +------+
//    | VLAN |      Any 16-bit number: whoever needs a valid VLAN checks.
//    +------+
class MvrpVlanAttribute {
 public:
   MvrpVlanAttribute() = default;
   explicit MvrpVlanAttribute( U16 vlanId ) : vlanId_( vlanId ) {}

   U16 vlanId() const { return vlanId_; }
   void vlanIdIs( U16 vlanId ) { vlanId_ = vlanId; }

   bool operator==( MvrpVlanAttribute const & ) const = default;

 private:
   Korv::NetworkOrder< U16 > vlanId_;

 public:
   static constexpr auto record = Korv::record(
      "Mrp::MvrpVlanAttribute", Korv::field( "vlanId", &MvrpVlanAttribute::vlanId_ ) );
};
static_assert( NamedWireRecord< MvrpVlanAttribute, 2 > );

// The head of a Message. No length of the list: its EndMark alone ends it.
//
//    0      1        2
//    +------+--------+
//    | type | length |      length: bytes of one FirstValue
//    +------+--------+
class MvrpMessageHeader {
 public:
   MvrpMessageHeader() = default;
   MvrpMessageHeader( U8 attributeType, U8 attributeLength )
      : attributeType_( attributeType ), attributeLength_( attributeLength ) {}

   U8 attributeType() const { return attributeType_; }
   void attributeTypeIs( U8 attributeType ) { attributeType_ = attributeType; }
   U8 attributeLength() const { return attributeLength_; }
   void attributeLengthIs( U8 attributeLength ) { attributeLength_ = attributeLength; }

   bool operator==( MvrpMessageHeader const & ) const = default;

 private:
   U8 attributeType_ = 0;
   U8 attributeLength_ = 0;
};
static_assert( WireRecord< MvrpMessageHeader, 2 > );

using MvrpVlanVector = VectorRecord< MvrpVlanAttribute >;
static_assert( WireRecord< MvrpVlanVector, 5 > );

} // namespace Mrp
