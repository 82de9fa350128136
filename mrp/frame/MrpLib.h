// The boundary between the protocol and the application that uses it, and the working memory of
// the machines.
//
// The agent makes one per participant, usually of a subclass that takes the indications; sets
// application, applicationMacAddr and applicationEtype, which then stay as they are; and hands it
// to mrpSmFactory. It must outlive the MrpSm. It owns the frames under construction; `mrpSm` points
// back, owns nothing, and is of no use once the MrpSm has gone.
//
// Values travel in fields. The value of an attribute is never an argument of a machine, a send
// operation or a database operation: whoever calls first names the attribute in the parse context
// and loads the Rx and Tx fields, and the callee reads what the last load left there. Nothing
// clears these fields between uses. The library writes them through the virtual mutators only, so
// that an override sees each change.
//
//    Rx        the value being received or processed
//    Tx        the value being sent
//
// Who loads what: the vector decoder the Rx field of each value; ParsedAttributes.cpp and
// DatabaseAccess.cpp both fields; the application the Tx field before mrpSendAttribute.
#pragma once

#include "mrp/platform/bridging/VlanId.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Notifier.h"
#include "mrp/platform/korv/Queue.h"
#include "mrp/platform/korv/String8.h"
#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/transmit/MrpTxPacketContext.h"
#include "mrp/vocabulary/Mrp.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

namespace Mrp {

class MrpSm;

class MrpLib : public Korv::Notifier {
 public:
   class Reactor : public Korv::ReactorOn< MrpLib > {
    public:
      virtual void onMrpTxPacketContext( Pelk::IntfId ) {}
      virtual void onMrpTxSecondPacketContext( Pelk::IntfId ) {}
      virtual void onMrpOutIntfQueue( U32 /* position */ ) {}
   };
   using TxPacketContexts = Korv::HashMap< Pelk::IntfId, Korv::Ptr< MrpTxPacketContext > >;
   using OutIntfQueue = Korv::Queue< Pelk::IntfId >;

   MrpLib() = default;
   // Deletes all contexts, unsent.
   ~MrpLib() override;

   // ---- Indications, for the subclass ---------------------------------------------------------
   // All are called synchronously from within a machine: an override that calls back into the
   // library must leave the parse context as it found it, and none may throw.

   // An attribute was registered or confirmed; its value stands in the Rx field. True says that
   // the application discarded the join.
   virtual bool mrpJoinIndication( MrpParameters const & joinIndication );
   // A registration has ended.
   virtual void mrpLeaveIndication( MrpParameters const & leaveIndication );
   // Nothing in the library calls this.
   virtual void mrpLeaveAllIndication( MrpParameters const & leaveAllIndication );

   // ---- Fields, written through virtual mutators ----------------------------------------------
   virtual void applicationIs( MrpApplication v );
   virtual void applicationMacAddrIs( Pelk::EthAddr const & v );
   virtual void applicationEtypeIs( U16 v );
   virtual void msrpTalkerAdvertiseRxIs( MsrpTalkerAdvertiseAttribute const & v );
   virtual void msrpTalkerFailedRxIs( MsrpTalkerFailedAttribute const & v );
   virtual void msrpListenerVectorRxIs( MsrpListenerAttribute const & v );
   virtual void msrpDomainVectorRxIs( MsrpDomainAttribute const & v );
   virtual void mvrpVlanVectorRxIs( MvrpVlanAttribute const & v );
   virtual void msrpTalkerAdvertiseTxIs( MsrpTalkerAdvertiseAttribute const & v );
   virtual void msrpTalkerFailedTxIs( MsrpTalkerFailedAttribute const & v );
   virtual void msrpListenerVectorTxIs( MsrpListenerAttribute const & v );
   virtual void msrpDomainVectorTxIs( MsrpDomainAttribute const & v );
   virtual void mvrpVlanVectorTxIs( MvrpVlanAttribute const & v );
   virtual void mrpTxPacketContextDel( Pelk::IntfId intfId );
   virtual void mrpTxPacketContextDel( TxPacketContexts::Walk const & member );
   virtual void mrpTxPacketContextNotify( Pelk::IntfId intfId );
   // The context that is there, or a new one over the packet.
   virtual MrpTxPacketContext * mrpTxPacketContextIs( Pelk::IntfId intfId,
                                                      Korv::Ptr< Pelk::Pkt > pkt );
   virtual void mrpOutIntfQueueDel( U32 position );
   virtual void mrpOutIntfQueueDel( OutIntfQueue::Walk const & entry );
   virtual void mrpOutIntfQueueNotify( U32 position );
   virtual U32 mrpOutIntfQueueEnq( Pelk::IntfId intfId );
   virtual Pelk::IntfId mrpOutIntfQueueDeq();
   virtual void mrpOutIntfQueueIs( U32 position, Pelk::IntfId intfId );
   virtual void mrpTxSecondPacketContextDel( Pelk::IntfId intfId );
   virtual void mrpTxSecondPacketContextDel( TxPacketContexts::Walk const & member );
   virtual void mrpTxSecondPacketContextNotify( Pelk::IntfId intfId );
   virtual MrpTxPacketContext * mrpTxSecondPacketContextIs( Pelk::IntfId intfId,
                                                            Korv::Ptr< Pelk::Pkt > pkt );
   virtual void mrpCurrentTxIntfIs( Pelk::IntfId v );
   virtual void mrpSmIs( MrpSm * v );

   MrpApplication application() const { return application_; }
   Pelk::EthAddr const & applicationMacAddr() const { return applicationMacAddr_; }
   U16 applicationEtype() const { return applicationEtype_; }
   MsrpTalkerAdvertiseAttribute const & msrpTalkerAdvertiseRx() const { return talkerRx_; }
   MsrpTalkerFailedAttribute const & msrpTalkerFailedRx() const { return talkerFailedRx_; }
   MsrpListenerAttribute const & msrpListenerVectorRx() const { return listenerRx_; }
   MsrpDomainAttribute const & msrpDomainVectorRx() const { return domainRx_; }
   MvrpVlanAttribute const & mvrpVlanVectorRx() const { return vlanRx_; }
   MsrpTalkerAdvertiseAttribute const & msrpTalkerAdvertiseTx() const { return talkerTx_; }
   MsrpTalkerFailedAttribute const & msrpTalkerFailedTx() const { return talkerFailedTx_; }
   MsrpListenerAttribute const & msrpListenerVectorTx() const { return listenerTx_; }
   MsrpDomainAttribute const & msrpDomainVectorTx() const { return domainTx_; }
   MvrpVlanAttribute const & mvrpVlanVectorTx() const { return vlanTx_; }
   // The first and the second frame under construction, per interface; a context is good until its
   // frame leaves.
   TxPacketContexts const & mrpTxPacketContext() const { return mrpTxPacketContext_; }
   MrpTxPacketContext * mrpTxPacketContext( Pelk::IntfId intfId ) const;
   TxPacketContexts const & mrpTxSecondPacketContext() const { return mrpTxSecondPacketContext_; }
   MrpTxPacketContext * mrpTxSecondPacketContext( Pelk::IntfId intfId ) const;
   void mrpTxPacketContextDelAll();
   void mrpTxSecondPacketContextDelAll();
   // The interfaces for the next mrpSendAttribute; an unknown position reads as the empty IntfId.
   OutIntfQueue const & mrpOutIntfQueue() const { return mrpOutIntfQueue_; }
   Pelk::IntfId mrpOutIntfQueue( U32 position ) const;
   void mrpOutIntfQueueDelAll();
   // Of the latest frame sent; read by nobody here.
   Pelk::IntfId mrpCurrentTxIntf() const { return mrpCurrentTxIntf_; }
   // Set by MrpSm when it initialises, null before. No operation below works before that.
   MrpSm * mrpSm() const { return mrpSm_; }

   // ---- receive/VectorDecoder.cpp -------------------------------------------------------------
   // Moves the Rx field to the next value of the vector; for event 0 it stays the FirstValue. For a
   // caller that does not know the kind: the decoder does, and steps the field by it.
   void mrpValueFromFirstValue( U16 eventNum );
   void mrpMsrpValueFromFirstValue();
   void mrpMvrpValueFromFirstValue();
   void mrpIncrementTalkerAdvertise();
   void mrpIncrementTalkerFailed();
   void mrpIncrementListenerVector();
   void mrpIncrementDomainVector();
   void mrpIncrementVlanVector();

   // ---- transmit/AttributeSend.cpp ------------------------------------------------------------
   // The machines' door to the transmit path: puts the attribute, with the value in its Tx field,
   // into the interface's frame at once. Reports by traces only.
   void mrpSendAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                              bool secondPktContext );
   void mrpSendMsrpAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                  bool secondPktContext );
   void mrpSendMvrpAttributeIntf( MrpParameters const & attribute, Pelk::IntfId intfId,
                                  bool secondPktContext );
   void mrpSendLeaveAll( U8 attributeType, Pelk::IntfId intfId );

   // ---- transmit/VectorEncoding.cpp -----------------------------------------------------------
   // Called from mrpSendAttributeIntf, with the context at hand. The room in the frame is the
   // caller's care.
   void mrpSendTalkerAdvertise( U8 event, Pelk::IntfId intfId, bool secondPktContext );
   void mrpSendTalkerFailed( U8 event, Pelk::IntfId intfId, bool secondPktContext );
   void mrpSendListenerVector( U8 event, Pelk::IntfId intfId, bool secondPktContext );
   void mrpSendDomainVector( U8 event, Pelk::IntfId intfId, bool secondPktContext );
   void mrpSendVlanVector( U8 event, Pelk::IntfId intfId, bool secondPktContext );
   // Write one vector at curVector, for a caller that has the value at hand; the number of bytes
   // written.
   U32 mrpEncodeTalkerVector( MrpTxPacketContext & packetContext,
                              MsrpTalkerAdvertiseAttribute const & talkerAdvertiseValue, U8 event );
   U32 mrpEncodeTalkerFailedVector( MrpTxPacketContext & packetContext,
                                    MsrpTalkerFailedAttribute const & talkerFailedValue, U8 event );
   U32 mrpEncodeListenerVector( MrpTxPacketContext & packetContext,
                                MsrpListenerAttribute const & listenerValue, U8 event );
   U32 mrpEncodeDomainVector( MrpTxPacketContext & packetContext,
                              MsrpDomainAttribute const & domainValue, U8 event );
   U32 mrpEncodeVlanVector( MrpTxPacketContext & packetContext, MvrpVlanAttribute const & vlanValue,
                            U8 event );

   // ---- transmit/ServicePrimitives.cpp --------------------------------------------------------
   // Both do nothing. They bear the names of the standard's MAD_Join.request and MAD_Leave.request;
   // here an application declares and withdraws by mrpSendAttribute.
   void mrpJoinReq( MrpParameters const & joinReq );
   void mrpLeaveReq( MrpParameters const & leaveReq );
   // The interface is wanted; frames go once its packet access has appeared.
   void mrpInterfaceEnable( Pelk::IntfId intfId );
   // Sends what is open, drops the contexts, moves the attributes to deferred deletion.
   void mrpInterfaceDisable( Pelk::IntfId intfId );
   void mrpCleanUpIntfDatabase( Pelk::IntfId intfId );
   void mrpCleanUpIntfDatabaseAttribute( Pelk::IntfId intfId, U8 attrType, U64 attrKey );
   // Both on the attribute that the parse context names.
   void mrpHandleInternalLeave();
   void mrpDeleteAttrOnDefaultStates();

   // ---- transmit/SendDoor.cpp -----------------------------------------------------------------
   // The application's door. Before the call the Tx field holds the value and mrpOutIntfQueue the
   // interfaces; the machines run once per queued entry, each time on attribute.intfId. Not in
   // standby, where there are no machines.
   void mrpSendAttribute( MrpParameters const & attribute );

   // ---- topology/SpanningTree.cpp -------------------------------------------------------------
   // The name of the tree instance in which the interface's role counts, from the spanning tree's
   // mode as it is now; empty if there is none. Throws RangeException like the next.
   Korv::String8 baseSpanningTreeTopo( Pelk::IntfId intfId ) const;
   // As configured, or 0. Throws RangeException if it is over 4094.
   Bridging::VlanId getNativeVlanId( Pelk::IntfId intfId ) const;

 private:
   MrpApplication application_ = InvalidApplication;
   Pelk::EthAddr applicationMacAddr_;
   U16 applicationEtype_ = 0;
   MsrpTalkerAdvertiseAttribute talkerRx_;
   MsrpTalkerFailedAttribute talkerFailedRx_;
   MsrpListenerAttribute listenerRx_;
   MsrpDomainAttribute domainRx_;
   MvrpVlanAttribute vlanRx_;
   MsrpTalkerAdvertiseAttribute talkerTx_;
   MsrpTalkerFailedAttribute talkerFailedTx_;
   MsrpListenerAttribute listenerTx_;
   MsrpDomainAttribute domainTx_;
   MvrpVlanAttribute vlanTx_;
   TxPacketContexts mrpTxPacketContext_;
   TxPacketContexts mrpTxSecondPacketContext_;
   OutIntfQueue mrpOutIntfQueue_;
   Pelk::IntfId mrpCurrentTxIntf_;
   MrpSm * mrpSm_ = nullptr;
};

// A plain MrpLib; a subclass takes the constructor itself.
Korv::Ptr< MrpLib > mrpLibFactory();

} // namespace Mrp
