// Views of a record at an offset of a packet's front data, for introspection. The parser and the
// encoder do not go through them: they overlay the records on the bytes.
//
// A wrapper shares the packet and holds the record's address, which is good for as long as the
// packet's front stays where it is. It forwards the record's fields as its own attributes; those
// that its record does not have do not compile.
#pragma once

#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/pelk/Pkt.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <new>
#include <string>

namespace Mrp {

template < class Record >
struct WrapperName;

template < class Record >
class RecordWrapper : public Korv::PtrInterface {
 public:
   RecordWrapper( Korv::Ptr< Pelk::Pkt > pkt, U32 offset )
      : pkt_( std::move( pkt ) ), offset_( offset ) {
      handleHeader();
   }

   Korv::Ptr< Pelk::Pkt > const & pkt() const { return pkt_; }
   U32 offset() const { return offset_; }
   Record * header() const { return header_; }

   // Of message headers.
   U8 attributeType() const { return header_->attributeType(); }
   void attributeTypeIs( U8 v ) { header_->attributeTypeIs( v ); }
   U8 attributeLength() const { return header_->attributeLength(); }
   void attributeLengthIs( U8 v ) { header_->attributeLengthIs( v ); }
   U16 attributeListLength() const { return header_->attributeListLength(); }
   void attributeListLengthIs( U16 v ) { header_->attributeListLengthIs( v ); }

   // Of vectors.
   U16 vectorHeader() const { return header_->vectorHeader(); }
   void vectorHeaderIs( U16 v ) { header_->vectorHeaderIs( v ); }
   auto const & firstValue() const { return header_->firstValue(); }
   void firstValueIs( auto const & v ) { header_->firstValueIs( v ); }
   U8 vector() const { return header_->vector(); }
   void vectorIs( U8 v ) { header_->vectorIs( v ); }

 private:
   // The bound is the wrapper's own size and not the record's: a small record at the very end of a
   // packet is refused.
   void handleHeader() {
      if ( offset_ + sizeof( RecordWrapper ) > pkt_->frontBytes() ) {
         auto const text = std::string( "( offset_ + sizeof( " ) + WrapperName< Record >::name +
                           " ) ) <= pkt_->frontBytes()";
         Korv::assertionFailed( text.c_str(), Korv::SourceLocation::current() );
      }
      header_ = reinterpret_cast< Record * >( pkt_->frontData() + offset_ );
   }

   Korv::Ptr< Pelk::Pkt > pkt_;
   U32 offset_;
   Record * header_ = nullptr;
};

// A range exception if no wrapper can be made, as for no packet.
template < class Record >
Korv::Ptr< RecordWrapper< Record > > recordWrapperFactory( Korv::Ptr< Pelk::Pkt > pkt,
                                                           U32 offset ) {
   auto * wrapper =
      pkt ? new ( std::nothrow ) RecordWrapper< Record >( std::move( pkt ), offset ) : nullptr;
   if ( !wrapper ) {
      Korv::throwRangeException( "null ValidPtr" );
   }
   return wrapper;
}

template <>
struct WrapperName< MsrpMessageHeader > {
   static constexpr char const * name = "MsrpMessageHeaderWrapper";
};
template <>
struct WrapperName< MsrpTalkerVector > {
   static constexpr char const * name = "MsrpTalkerVectorWrapper";
};
template <>
struct WrapperName< MsrpTalkerFailedVector > {
   static constexpr char const * name = "MsrpTalkerFailedVectorWrapper";
};
template <>
struct WrapperName< MsrpListenerVector > {
   static constexpr char const * name = "MsrpListenerVectorWrapper";
};
template <>
struct WrapperName< MsrpDomainVector > {
   static constexpr char const * name = "MsrpDomainVectorWrapper";
};
template <>
struct WrapperName< MvrpMessageHeader > {
   static constexpr char const * name = "MvrpMessageHeaderWrapper";
};
template <>
struct WrapperName< MvrpVlanVector > {
   static constexpr char const * name = "MvrpVlanVectorWrapper";
};

using MsrpMessageHeaderWrapper = RecordWrapper< MsrpMessageHeader >;
using MsrpTalkerVectorWrapper = RecordWrapper< MsrpTalkerVector >;
using MsrpTalkerFailedVectorWrapper = RecordWrapper< MsrpTalkerFailedVector >;
using MsrpListenerVectorWrapper = RecordWrapper< MsrpListenerVector >;
using MsrpDomainVectorWrapper = RecordWrapper< MsrpDomainVector >;
using MvrpMessageHeaderWrapper = RecordWrapper< MvrpMessageHeader >;
using MvrpVlanVectorWrapper = RecordWrapper< MvrpVlanVector >;

// Each takes the packet and the offset.
inline constexpr auto & msrpMessageHeaderWrapperFactory = recordWrapperFactory< MsrpMessageHeader >;
inline constexpr auto & msrpTalkerVectorWrapperFactory = recordWrapperFactory< MsrpTalkerVector >;
inline constexpr auto & msrpTalkerFailedVectorWrapperFactory =
   recordWrapperFactory< MsrpTalkerFailedVector >;
inline constexpr auto & msrpListenerVectorWrapperFactory =
   recordWrapperFactory< MsrpListenerVector >;
inline constexpr auto & msrpDomainVectorWrapperFactory = recordWrapperFactory< MsrpDomainVector >;
inline constexpr auto & mvrpMessageHeaderWrapperFactory = recordWrapperFactory< MvrpMessageHeader >;
inline constexpr auto & mvrpVlanVectorWrapperFactory = recordWrapperFactory< MvrpVlanVector >;

} // namespace Mrp
