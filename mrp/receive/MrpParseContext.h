// The current attribute: what the parser reads and what machines and encoders work on.
//
// One per participant, from the end of standby. The machines take no attribute as an argument:
// whoever posts an event first names the attribute here. No field is cleared between frames; each
// keeps the last value written.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

class MrpParseContext : public Korv::NamedEntity {
 public:
   class Reactor : public Korv::ReactorOn< MrpParseContext > {
    public:
      virtual void onIntfId() {}
      virtual void onAttributeType() {}
      virtual void onAttributeKey() {}
      virtual void onAttributeEvent() {}
      virtual void onAttributeLength() {}
      virtual void onAttributeListBytesLeft() {}
      virtual void onNumberOfValues() {}
      virtual void onLeaveAll() {}
      virtual void onSendTxLvAll() {}
      virtual void onEventsCounter() {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h

   explicit MrpParseContext( Korv::Name name ) : NamedEntity( std::move( name ) ) {}

   // The attribute: interface, MsrpAttrType or MvrpAttrType number, key.
   Pelk::IntfId intfId() const { return intfId_; }
   void intfIdIs( Pelk::IntfId v ) {
      if ( intfId_ != v ) {
         ++placeChanges_;
         ++attributeChanges_;
         set( intfId_, v, &Reactor::onIntfId );
      }
   }
   U8 attributeType() const { return attributeType_; }
   void attributeTypeIs( U8 v ) {
      if ( attributeType_ != v ) {
         ++placeChanges_;
         ++attributeChanges_;
         set( attributeType_, v, &Reactor::onAttributeType );
      }
   }
   U64 attributeKey() const { return attributeKey_; }
   void attributeKeyIs( U64 v ) {
      if ( attributeKey_ != v ) {
         ++attributeChanges_;
         set( attributeKey_, v, &Reactor::onAttributeKey );
      }
   }
   // How often interface or type have changed, and how often any of the three: whoever remembers
   // what it found for them sees by these whether that still holds.
   U64 placeChanges() const { return placeChanges_; }
   U64 attributeChanges() const { return attributeChanges_; }
   // A MrpThreePackedEvent number.
   U8 attributeEvent() const { return attributeEvent_; }
   void attributeEventIs( U8 v ) { set( attributeEvent_, v, &Reactor::onAttributeEvent ); }

   // The parser's place: AttributeLength of the message, what is left of an MSRP
   // AttributeListLength (it wraps), NumberOfValues and LeaveAll of the vector.
   U8 attributeLength() const { return attributeLength_; }
   void attributeLengthIs( U8 v ) { set( attributeLength_, v, &Reactor::onAttributeLength ); }
   U16 attributeListBytesLeft() const { return attributeListBytesLeft_; }
   void attributeListBytesLeftIs( U16 v ) {
      set( attributeListBytesLeft_, v, &Reactor::onAttributeListBytesLeft );
   }
   void attributeListBytesLeftDec( std::size_t v ) {
      attributeListBytesLeftIs( static_cast< U16 >( attributeListBytesLeft_ - v ) );
   }
   U16 numberOfValues() const { return numberOfValues_; }
   void numberOfValuesIs( U16 v ) { set( numberOfValues_, v, &Reactor::onNumberOfValues ); }
   // A MrpLeaveAllEvent number.
   U8 leaveAll() const { return leaveAll_; }
   void leaveAllIs( U8 v ) { set( leaveAll_, v, &Reactor::onLeaveAll ); }

   // Raised by the LeaveAll machine, taken by the first vector that the encoder opens.
   bool sendTxLvAll() const { return sendTxLvAll_; }
   void sendTxLvAllIs( bool v ) { set( sendTxLvAll_, v, &Reactor::onSendTxLvAll ); }

   // Events seen since the participant left standby.
   U32 eventsCounter() const { return eventsCounter_; }
   void eventsCounterIs( U32 v ) { set( eventsCounter_, v, &Reactor::onEventsCounter ); }
   void eventsCounterInc( U32 v ) { eventsCounterIs( eventsCounter_ + v ); }

   static constexpr auto attributes() {
      using C = MrpParseContext;
      return Korv::attributeTable(
         "Mrp::MrpParseContext", //
         Korv::scalar( 258, "intfId", &C::intfId, &C::intfIdIs ),
         Korv::scalar( 259, "attributeType", &C::attributeType, &C::attributeTypeIs ),
         Korv::scalar( 260, "attributeKey", &C::attributeKey, &C::attributeKeyIs ),
         Korv::scalar( 261, "attributeEvent", &C::attributeEvent, &C::attributeEventIs ),
         Korv::scalar( 262, "attributeLength", &C::attributeLength, &C::attributeLengthIs ),
         Korv::scalar( 263, "attributeListBytesLeft", &C::attributeListBytesLeft,
                       &C::attributeListBytesLeftIs ),
         Korv::scalar( 264, "numberOfValues", &C::numberOfValues, &C::numberOfValuesIs ),
         Korv::scalar( 265, "leaveAll", &C::leaveAll, &C::leaveAllIs ),
         Korv::scalar( 266, "sendTxLvAll", &C::sendTxLvAll, &C::sendTxLvAllIs ),
         Korv::scalar( 267, "eventsCounter", &C::eventsCounter, &C::eventsCounterIs ) );
   }

 private:
   Pelk::IntfId intfId_;
   U64 attributeKey_ = 0;
   U64 placeChanges_ = 0;
   U64 attributeChanges_ = 0;
   U32 eventsCounter_ = 0;
   U16 attributeListBytesLeft_ = 0;
   U16 numberOfValues_ = 0;
   U8 attributeType_ = 0;
   U8 attributeEvent_ = 0;
   U8 attributeLength_ = 0;
   U8 leaveAll_ = 0;
   bool sendTxLvAll_ = false;
};

Korv::Ptr< MrpParseContext > mrpParseContextFactory( Korv::Name const & name );

} // namespace Mrp
