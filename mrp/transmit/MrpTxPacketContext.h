// One frame under construction on one interface.
//
// Made by mrpSendAttributeIntf for the first attribute after the last frame left, held by MrpLib
// in one of its two maps, gone when the frame has been handed over. curMessage and curVector are
// places inside the packet's body buffer, null while the frame holds no message.
#pragma once

#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/pelk/Pkt.h"
#include "mrp/vocabulary/MrpEnums.h"

namespace Mrp {

class MrpTxPacketContext : public Korv::Entity {
 public:
   class Reactor : public Korv::ReactorOn< MrpTxPacketContext > {
    public:
      virtual void onPkt() {}
      virtual void onCurMessage() {}
      virtual void onCurVector() {}
      virtual void onCurrentAttrType() {}
   };

   MrpTxPacketContext( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pkt > pkt )
      : intfId_( intfId ), pkt_( std::move( pkt ) ) {}

   Pelk::IntfId intfId() const { return intfId_; }
   Korv::Ptr< Pelk::Pkt > const & pkt() const { return pkt_; }
   void pktIs( Korv::Ptr< Pelk::Pkt > const & v ) {
      if ( !( pkt_ == v ) ) {
         pkt_ = v;
         notify( &Reactor::onPkt );
      }
   }

   U8 * curMessage() const { return curMessage_; }
   void curMessageIs( U8 * v ) { set( curMessage_, v, &Reactor::onCurMessage ); }
   U8 * curVector() const { return curVector_; }
   void curVectorIs( U8 * v ) { set( curVector_, v, &Reactor::onCurVector ); }
   // Of the attribute encoded last, 0 in a fresh frame.
   U8 currentAttrType() const { return currentAttrType_; }
   void currentAttrTypeIs( U8 v ) { set( currentAttrType_, v, &Reactor::onCurrentAttrType ); }

 private:
   Pelk::IntfId intfId_;
   Korv::Ptr< Pelk::Pkt > pkt_;
   U8 * curMessage_ = nullptr;
   U8 * curVector_ = nullptr;
   U8 currentAttrType_ = 0;
};

} // namespace Mrp
