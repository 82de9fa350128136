// The small values by which attributes are named in collections, and passed between the machines
// and MrpLib. Equality and order go field by field, in the order of the fields; numbers compare as
// unsigned.
#pragma once

#include "mrp/platform/pelk/IntfId.h"
#include "mrp/vocabulary/Foundation.h"

#include <compare>

namespace Mrp {

// One attribute on one interface. In an ordered set all attributes of an interface are adjacent,
// within them all of one type, in ascending order of their keys.
class MrpAttribute {
 public:
   MrpAttribute() = default;
   MrpAttribute( Pelk::IntfId intfId, U8 attributeType, U64 attributeVal )
      : intfId_( intfId ), attributeType_( attributeType ), attributeVal_( attributeVal ) {}

   Pelk::IntfId intfId() const { return intfId_; }
   U8 attributeType() const { return attributeType_; }
   U64 attributeVal() const { return attributeVal_; }

   auto operator<=>( MrpAttribute const & ) const = default;
   U32 hash() const { return Korv::hashOf( *this ); }

 private:
   Pelk::IntfId intfId_;
   U8 attributeType_ = 0;
   U64 attributeVal_ = 0;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::MrpAttribute", Korv::field( "intfId", &MrpAttribute::intfId_ ),
                    Korv::field( "attributeType", &MrpAttribute::attributeType_ ),
                    Korv::field( "attributeVal", &MrpAttribute::attributeVal_ ) );
};

// What passes between the machines and the service primitives. `attributeEvent` holds a
// MrpThreePackedEvent; `newEvent` is the one field that changes after construction.
class MrpParameters {
 public:
   MrpParameters() = default;
   MrpParameters( Pelk::IntfId intfId, U8 attributeType, U8 attributeEvent )
      : intfId_( intfId ), attributeType_( attributeType ), attributeEvent_( attributeEvent ) {}

   Pelk::IntfId intfId() const { return intfId_; }
   U8 attributeType() const { return attributeType_; }
   U8 attributeEvent() const { return attributeEvent_; }
   bool newEvent() const { return newEvent_; }
   void newEventIs( bool isNew ) { newEvent_ = isNew; }

   bool operator==( MrpParameters const & ) const = default;

 private:
   Pelk::IntfId intfId_;
   U8 attributeType_ = 0;
   U8 attributeEvent_ = 0;
   bool newEvent_ = false;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::MrpParameters", Korv::field( "intfId", &MrpParameters::intfId_ ),
                    Korv::field( "attributeType", &MrpParameters::attributeType_ ),
                    Korv::field( "attributeEvent", &MrpParameters::attributeEvent_ ),
                    Korv::field( "newEvent", &MrpParameters::newEvent_ ) );
};

// One received attribute within the frame at hand; the frame's interface is held elsewhere.
class MrpParsedAttributeKey {
 public:
   MrpParsedAttributeKey() = default;
   MrpParsedAttributeKey( U8 attributeType, U64 attributeKey )
      : attributeType_( attributeType ), attributeKey_( attributeKey ) {}

   U8 attributeType() const { return attributeType_; }
   U64 attributeKey() const { return attributeKey_; }

   auto operator<=>( MrpParsedAttributeKey const & ) const = default;
   U32 hash() const { return Korv::hashOf( *this ); }

 private:
   U8 attributeType_ = 0;
   U64 attributeKey_ = 0;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::MrpParsedAttributeKey",
                    Korv::field( "attributeType", &MrpParsedAttributeKey::attributeType_ ),
                    Korv::field( "attributeKey", &MrpParsedAttributeKey::attributeKey_ ) );
};

// One interface and attribute type. What it is the key of is part of its type, and of its text
// form: Use has a `typeName`.
template < class Use >
class IntfTypeKey {
 public:
   IntfTypeKey() = default;
   IntfTypeKey( Pelk::IntfId intfId, U8 attributeType )
      : intfId_( intfId ), attributeType_( attributeType ) {}

   Pelk::IntfId intfId() const { return intfId_; }
   U8 attributeType() const { return attributeType_; }

   auto operator<=>( IntfTypeKey const & ) const = default;
   U32 hash() const { return Korv::hashOf( *this ); }

 private:
   Pelk::IntfId intfId_;
   U8 attributeType_ = 0;

 public:
   static constexpr auto record =
      Korv::record( Use::typeName, Korv::field( "intfId", &IntfTypeKey::intfId_ ),
                    Korv::field( "attributeType", &IntfTypeKey::attributeType_ ) );
};

// A LeaveAll timer; the key of `leaveAllTime` of MrpApplicationDatabase.
struct LeaveAllUse {
   static constexpr char const * typeName = "Mrp::MrpLeaveAllKey";
};
using MrpLeaveAllKey = IntfTypeKey< LeaveAllUse >;

// A walk over the attributes of a type; the key of `mrpAttrIter` of MrpSm, there MrpAttrIter::Key.
struct AttrIterUse {
   static constexpr char const * typeName = "Mrp::MrpAttrIter::Key";
};
using MrpAttrIterKey = IntfTypeKey< AttrIterUse >;

// A position in an attribute's value bytes, 0 to 64.
class ValueIndex {
 public:
   static constexpr U8 min = 0;
   static constexpr U8 max = 64;

   ValueIndex() = default;
   // Throws RangeException for a value outside of the bounds.
   explicit ValueIndex( U64 value );

   U8 value() const { return value_; }

   auto operator<=>( ValueIndex const & ) const = default;

   static ValueIndex textRead( Korv::TextReader & in );

 private:
   U8 value_ = 0;

 public:
   static constexpr auto record =
      Korv::record( "Mrp::ValueIndex", Korv::field( "value", &ValueIndex::value_ ) );
};

} // namespace Mrp
