// One attribute: its applicant state, its registrar state and its value.
//
// It stands in the tree under its MrpIntfTypeApplicant, or free, as the pending copy of an
// attribute that the tree does not hold yet. There are hundreds of thousands of these: keep it
// small.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

class MrpAttrDatabase : public Korv::Entity {
 public:
   class Reactor : public Korv::ReactorOn< MrpAttrDatabase > {
    public:
      virtual void onApplicantState() {}
      virtual void onRegistrarState() {}
      virtual void onAttributeValue( U32 /* index */ ) {}
      virtual void onAttributeValueMetadata() {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   // Attributes come and go with the traffic and the levels above them hardly ever, so that a
   // change among attributes is counted apart: who remembers a level need not look it up again.
   using MembershipLevel = MrpAttrDatabase;
   // All values but a talker's (25 and 34 bytes) fit inside.
   using AttributeValue = Korv::ByteQueue< 14 >;
   using AttributeValueMetadata = Korv::ByteQueueMetadata;

   // States are 0 after construction, the registrar's mrpIn among them: it is adding the attribute
   // to the database that makes it mrpMt.
   explicit MrpAttrDatabase( U64 mrpAttributeKey ) : mrpAttributeKey_( mrpAttributeKey ) {}

   U64 mrpAttributeKey() const { return mrpAttributeKey_; }

   MrpApplicantState applicantState() const { return applicantState_; }
   void applicantStateIs( MrpApplicantState v ) {
      set( applicantState_, v, &Reactor::onApplicantState );
   }
   MrpRegistrarState registrarState() const { return registrarState_; }
   void registrarStateIs( MrpRegistrarState v ) {
      set( registrarState_, v, &Reactor::onRegistrarState );
   }
   // The states, into the processor's cache.
   void prefetch() const { __builtin_prefetch( &registrarState_ ); }
   // Nothing declared, nothing registered: an attribute in these states is removed.
   bool inDefaultStates() const {
      return applicantState_ == mrpVeryAnxiousObserver && registrarState_ == mrpMt;
   }

   // The value's bytes, as in the record of its kind, byte i in slot i. The slots in use are one
   // span without holes. Throws RangeException for an index above 64, or for one that is neither in
   // the span nor next to it.
   AttributeValue const & attributeValue() const { return attributeValue_; }
   void attributeValueIs( U32 index, U8 byte );
   void attributeValueEnq( U8 byte );
   U8 attributeValueDeq();
   void attributeValueDel( U32 index );
   void attributeValueDelAll();
   void attributeValueMetadataIs( AttributeValueMetadata span );
   // attributeValueIs for the bytes of a record, from index 0.
   template < class Record >
   void attributeValueAllIs( Record const & record ) {
      if ( isWatched() || !attributeValue_.putAll( &record, sizeof record ) ) {
         putEach( &record, sizeof record );
      }
   }

   static constexpr auto attributes() {
      using C = MrpAttrDatabase;
      return Korv::attributeTable(
         "Mrp::MrpAttrDatabase", //
         Korv::keyScalar( 258, "mrpAttributeKey", &C::mrpAttributeKey ),
         Korv::scalar( 259, "applicantState", &C::applicantState, &C::applicantStateIs ),
         Korv::scalar( 260, "registrarState", &C::registrarState, &C::registrarStateIs ),
         Korv::queue( 261, 262, "attributeValue", &C::attributeValue, &C::attributeValueMetadataIs,
                      &C::attributeValueIs, &C::attributeValueDel ) );
   }

   Korv::String8 parentAttrName() const override { return parent() ? "mrpAttribute" : ""; }

 protected:
   Korv::String8 keyText() const override { return std::to_string( mrpAttributeKey_ ); }

 private:
   void putEach( void const * bytes, U32 size );

   U64 mrpAttributeKey_;
   MrpApplicantState applicantState_ = mrpVeryAnxiousObserver;
   MrpRegistrarState registrarState_ = mrpIn;
   AttributeValue attributeValue_;
};

// A free one, attached to nothing: a pending copy.
Korv::Ptr< MrpAttrDatabase > MrpAttrDatabaseIs( U64 mrpAttributeKey );

} // namespace Mrp
