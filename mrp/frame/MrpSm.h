// One participant: one MRP application, MSRP or MVRP, on all interfaces of the switch.
//
// The agent makes the entities and a MrpLib, calls mrpSmFactory and keeps the result. From then on
// all work arrives as notifications on the one event loop: a frame is readable, a timer has fired,
// a watched attribute has changed, the application has called a primitive. Each runs to its end
// before the loop goes on; there are no locks.
//
// This class is where the rooms of the engine meet: it owns their objects and holds the state that
// they share. What it does in a room stands in a file of that room, and each section below names
// the file with its bodies; read them in the order of receive, machines, database, transmit. Public
// is what others call: an agent, a machine, an encoder, a watcher. The steps that only this class
// itself takes are private.
//
// Owns: every machine, the parser's working state, the queues between parser and machines, the
// pending sets, the index, the timer wheel and the packet access objects. Shares with the agent:
// the configuration and status entities. Points to, without owning: MrpLib.
//
//  1. In standby only the packet access objects exist; the counters, the parse context, the wheel
//     and all machines are null, and frames stay in their sockets. A participant leaves standby
//     once and never returns to it.
//  2. The machines work on the attribute that the parse context names, with the value in the Rx
//     and Tx fields of MrpLib. To post an event: load the context and the fields, store the event,
//     call the handler. Of a pair of events the applicant's comes before the registrar's.
//  3. Between frames mrpRxLeaveAll, mrpParsedAttribute and both key queues are empty.
//  4. An attribute exists for the protocol if it has a copy in addPendingAttr, or if it stands in
//     the tree with no mark in deletePendingAttr. Where it has a copy, that is the one that counts.
//  5. mrpAttrIter has the key of every attribute that exists, by interface and type. That of one
//     marked for deletion may be gone already.
#pragma once

#include "mrp/database/MrpAttrIter.h"
#include "mrp/database/MrpStatus.h"
#include "mrp/frame/MrpLib.h"
#include "mrp/platform/bridging/Bridging.h"
#include "mrp/platform/dovr/TimerWheel.h"
#include "mrp/platform/interface/AllEthPhyIntfStatusDir.h"
#include "mrp/platform/interface/AllIntfStatusDir.h"
#include "mrp/platform/interface/EthDevPamManager.h"
#include "mrp/platform/interface/NetNsIntfStatusManagerRoot.h"
#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/korv/Fifo.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/mirel/EntityManager.h"
#include "mrp/platform/stp/Stp.h"
#include "mrp/receive/MrpCounters.h"
#include "mrp/receive/MrpParseContext.h"
#include "mrp/receive/MrpParsedAttribute.h"
#include "mrp/topology/MrpConfig.h"

namespace Mrp {

class MrpApplicantSm;
class MrpAttrLogSm;
class MrpDatabaseAddSm;
class MrpDatabaseDeleteSm;
class MrpLeaveAllSm;
class MrpPamSm;
class MrpRegistrarSm;

class MrpSm : public Korv::PtrInterface {
 public:
   using AddPending = Korv::OrderedMap< MrpAttribute, Korv::Ptr< MrpAttrDatabase > >;
   using DeletePending = Korv::OrderedMap< MrpAttribute, bool >;
   using AttrIters = Korv::HashMap< MrpAttrIter::Key, Korv::Ptr< MrpAttrIter > >;
   using ParsedKeys = Korv::Fifo< MrpParsedAttributeKey >;
   using RxLeaveAll = Korv::OrderedMap< U8, bool >;

   // The arguments of mrpSmFactory, which does nothing but construct.
   MrpSm( Korv::Ptr< Bridging::Config const > brConfig, MrpLib * mrpLib,
          Korv::Ptr< MrpConfig const > mrpConfig, Korv::Ptr< MrpStatus > mrpStatus,
          Korv::Ptr< Stp::Status const > stpStatus,
          Korv::Ptr< Bridging::Topology::Config const > brTopoConfig,
          Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir,
          Korv::Ptr< Mirel::EntityManager > em, bool standbyMode );
   ~MrpSm() override;

   // ---- What the agent gave -------------------------------------------------------------------
   Korv::Ptr< Bridging::Config const > const & brConfig() const { return brConfig_; }
   MrpLib * mrpLib() const { return mrpLib_; }
   Korv::Ptr< MrpConfig const > const & mrpConfig() const { return mrpConfig_; }
   Korv::Ptr< MrpStatus > const & mrpStatus() const { return mrpStatus_; }
   Korv::Ptr< Bridging::Topology::Config const > const & brTopoConfig() const {
      return brTopoConfig_;
   }
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > const & ethPhyIntfStatusDir() const {
      return ethPhyIntfStatusDir_;
   }
   Korv::Ptr< Mirel::EntityManager > const & em() const { return em_; }

   // ---- frame/MrpSm.cpp: the participant's life, and what it owns -----------------------------
   bool initialized() const { return initialized_; }
   // The agent ends standby by standbyModeIs( false ) and then handleStandbyMode(), once; nothing
   // watches the attribute. A further call makes all machines anew and leaves the interfaces
   // without LeaveAll.
   bool standbyMode() const { return standbyMode_; }
   void standbyModeIs( bool v ) { standbyMode_ = v; }
   void handleStandbyMode();
   // Makes the counters if needed and sets all ten to 0.
   void doInitializeCounters();

   // The MRPDU version sent and understood.
   static constexpr U8 protocolVersion() { return 0; }
   // Number of attribute types of the application: MSRP 4, MVRP 1, any other 0; 0 in standby.
   U8 maxAttrTypes() const { return maxAttrTypes_; }

   Korv::Ptr< MrpCounters > const & mrpCounters() const { return mrpCounters_; }
   Korv::Ptr< MrpParseContext > const & parseContext() const { return parseContext_; }
   Korv::Ptr< Dovr::TimerWheel > const & timerWheel() const { return timerWheel_; }
   Korv::Ptr< MrpApplicantSm > const & applicantSm() const { return applicantSm_; }
   Korv::Ptr< MrpRegistrarSm > const & registrarSm() const { return registrarSm_; }
   Korv::Ptr< MrpLeaveAllSm > const & leaveAllSm() const { return leaveAllSm_; }
   Korv::Ptr< MrpDatabaseAddSm > const & mrpDatabaseAddSm() const { return mrpDatabaseAddSm_; }
   Korv::Ptr< MrpDatabaseDeleteSm > const & mrpDatabaseDeleteSm() const {
      return mrpDatabaseDeleteSm_;
   }
   Korv::Ptr< MrpAttrLogSm > const & mrpAttrLogSm() const { return mrpAttrLogSm_; }

   // ---- frame/PamAccess.cpp: packet access ----------------------------------------------------
   // These exist in standby too.
   Korv::Ptr< Interface::AllIntfStatusDir > const & allIntfStatusDir() const {
      return allIntfStatusDir_;
   }
   Korv::Ptr< Interface::AllIntfStatusLocalDir > const & allIntfStatusLocalDir() const {
      return allIntfStatusLocalDir_;
   }
   Korv::Ptr< Interface::DeviceIntfStatusDir > const & deviceIntfStatusDir() const {
      return deviceIntfStatusDir_;
   }
   Korv::Ptr< Interface::NetNsIntfStatusManagerRoot > const & intfStatusManagerRoot() const {
      return intfStatusManagerRoot_;
   }
   Korv::Ptr< Interface::EthDevPamManager > const & pamMan() const { return pamMan_; }
   Korv::Ptr< Interface::PamDesiredIntfDir > const & desiredIntfDir() const {
      return desiredIntfDir_;
   }
   Korv::Ptr< Interface::EthDevPamCollection > const & pamCollection() const {
      return pamCollection_;
   }
   Korv::Ptr< MrpPamSm > const & mrpPamSm() const { return mrpPamSm_; }
   // The interface's packet access, or null.
   Pelk::Pam * pam( Pelk::IntfId intfId ) const;
   // The source address of frames that leave there: the port's, or the bridge's for a port without
   // one.
   Pelk::EthAddr sourceAddress( Pelk::IntfId intfId ) const;

   // ---- receive/MrpduParser.cpp: frame to vectors ---------------------------------------------
   // Called by MrpIntfPamSm::handleMrpdu, with the packet's front behind the Ethernet header.
   void parseMrpdu( Korv::Ptr< Pelk::Pkt > const & pkt );
   // While true the parser walks a frame and records nothing of it. The library only resets it, at
   // the end of each MRPDU.
   bool recycledPkt() const { return recycledPkt_; }
   void recycledPktIs( bool v ) { recycledPkt_ = v; }

   // ---- receive/VectorDecoder.cpp: vectors to parsed attributes -------------------------------
   // For a caller that does not know the kind. The library knows it, and does the same by
   // processValue and saveValue. All on the parse context's type; a type that the application lacks
   // has the key 0 and no value.
   void processMrpEvent( U8 event, U16 eventNum );
   U64 mrpGetRxAttributeKey() const;
   U64 msrpGetRxAttributeKey() const;
   U64 mvrpGetRxAttributeKey() const;
   void saveParsedMrpAttribute();
   void saveParsedMrpAttributeValue( MrpParsedAttribute & attribute ) const;
   void saveParsedMsrpAttributeValue( MrpParsedAttribute & attribute ) const;
   void saveParsedMvrpAttributeValue( MrpParsedAttribute & attribute ) const;

   // What the frame said: types with a LeaveAll, each attribute's last event and value, and the
   // keys in their order of arrival, MSRP domains apart. Filled by the decoder, emptied by
   // processParsedAttributes.
   RxLeaveAll const & mrpRxLeaveAll() const { return mrpRxLeaveAll_; }
   bool mrpRxLeaveAll( U8 attributeType ) const {
      bool const * const found = mrpRxLeaveAll_.find( attributeType );
      return found && *found;
   }
   void mrpRxLeaveAllIs( U8 attributeType, bool v ) {
      mrpRxLeaveAll_.insertOrAssign( attributeType, v );
   }
   void newMrpRxLeaveAll( U8 attributeType, bool v ) { mrpRxLeaveAllIs( attributeType, v ); }
   void mrpRxLeaveAllDel( U8 attributeType ) { mrpRxLeaveAll_.erase( attributeType ); }
   void mrpRxLeaveAllDelAll() { mrpRxLeaveAll_.clear(); }
   MrpParsedAttributes const & mrpParsedAttribute() const { return mrpParsedAttribute_; }
   MrpParsedAttribute * mrpParsedAttribute( MrpParsedAttributeKey key ) const {
      return mrpParsedAttribute_.find( key );
   }
   MrpParsedAttribute * mrpParsedAttributeIs( MrpParsedAttributeKey key ) {
      return mrpParsedAttribute_.findOrMake( key );
   }
   MrpParsedAttribute * newMrpParsedAttribute( MrpParsedAttributeKey key ) {
      return mrpParsedAttributeIs( key );
   }
   void mrpParsedAttributeDel( MrpParsedAttributeKey key ) { mrpParsedAttribute_.erase( key ); }
   void mrpParsedAttributeDelAll() { mrpParsedAttribute_.clear(); }
   ParsedKeys const & mrpParsedAttributeKey() const { return mrpParsedAttributeKey_; }
   void mrpParsedAttributeKeyEnq( MrpParsedAttributeKey key ) { mrpParsedAttributeKey_.enq( key ); }
   MrpParsedAttributeKey mrpParsedAttributeKeyDeq() { return mrpParsedAttributeKey_.deq(); }
   void mrpParsedAttributeKeyDelAll() { mrpParsedAttributeKey_.clear(); }
   ParsedKeys const & msrpParsedDomainKey() const { return msrpParsedDomainKey_; }
   void msrpParsedDomainKeyEnq( MrpParsedAttributeKey key ) { msrpParsedDomainKey_.enq( key ); }
   MrpParsedAttributeKey msrpParsedDomainKeyDeq() { return msrpParsedDomainKey_.deq(); }
   void msrpParsedDomainKeyDelAll() { msrpParsedDomainKey_.clear(); }

   // ---- receive/ParsedAttributes.cpp: the frame as a whole to the machines --------------------
   // Called by MrpIntfPamSm::handleMrpdu, after parseMrpdu.
   void processParsedAttributes( Pelk::IntfId intfId );
   // A saved value into the Rx and Tx fields, for a caller that does not know the kind.
   void fillMrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute );
   void fillMsrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute );
   void fillMvrpLibFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute );

   // ---- database/DatabaseAccess.cpp: attributes by name ---------------------------------------
   // Null if there is none. With useLocalCopy what the machines believe: pending additions
   // included; without it the committed tree alone. What is marked for deletion is gone in both.
   MrpAttrDatabase * mrpGetAttrFromDatabase( Pelk::IntfId intfId, U8 attributeType,
                                             U64 attributeKey, bool useLocalCopy ) const;
   // The entry in the tree, which is made if need be; null where a watcher has ended a level of it
   // within that level's announcement.
   Korv::Ptr< MrpAttrDatabase > createEntryInDatabase( Pelk::IntfId intfId, U8 attributeType,
                                                       U64 attributeKey );
   // The attribute that the parse context names, or null; one that is missing is made if so asked.
   // An indication or a review may end it: hold it by a Ptr across such a call.
   MrpAttrDatabase * mrpGetAttribute( bool addIfNotFound ) {
      return found_.attributeAt == attributeState() ? found_.attribute
                                                    : mrpFindAttribute( addIfNotFound );
   }
   // addAttrToDeletePending for the attribute that the parse context names.
   void mrpDeleteAttrFromDatabase();
   // Writes the Tx or the Rx record of the parse context's type into the attribute's value.
   void mrpPopulateValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute );
   // Names the attribute in the parse context and loads its stored value into both records; an
   // attribute that is not found leaves both all zero.
   void mrpFillContextFromDatabase( MrpAttribute const & mrpAttribute );
   // Whether the value just received is the stored one.
   bool mrpRxVectorSameAsDatabaseAttr();

   // The index of invariant 5.
   AttrIters const & mrpAttrIter() const { return mrpAttrIter_; }
   MrpAttrIter * mrpAttrIter( MrpAttrIter::Key const & key ) const;
   MrpAttrIter * mrpAttrIterIs( MrpAttrIter::Key const & key );
   MrpAttrIter * newMrpAttrIter( MrpAttrIter::Key const & key ) { return mrpAttrIterIs( key ); }
   void mrpAttrIterDel( MrpAttrIter::Key const & key ) { mrpAttrIter_.erase( key ); }
   void mrpAttrIterDelAll() { Korv::membersDelAll( mrpAttrIter_ ); }
   void addToAttrIter( Pelk::IntfId intfId, U8 attributeType, U64 attributeKey );
   void removeFromAttrIter( Pelk::IntfId intfId, U8 attributeType, U64 attributeKey );

   // ---- database/PendingAttributes.cpp: deferred add and delete -------------------------------
   // The attribute exists no more: its copy goes at once, its entry in the tree at a review.
   void addAttrToDeletePending( MrpAttribute const & attribute );

   // The sets of invariant 4. MrpDatabaseAddSm and MrpDatabaseDeleteSm take entries out as they
   // commit them.
   AddPending const & addPendingAttr() const { return addPendingAttr_; }
   MrpAttrDatabase * addPendingAttr( MrpAttribute const & attribute ) const;
   void addPendingAttrIs( MrpAttribute const & attribute, Korv::Ptr< MrpAttrDatabase > copy );
   void newAddPendingAttr( MrpAttribute const & attribute, Korv::Ptr< MrpAttrDatabase > copy ) {
      addPendingAttrIs( attribute, std::move( copy ) );
   }
   void addPendingAttrDel( MrpAttribute const & attribute );
   void addPendingAttrDelAll();
   DeletePending const & deletePendingAttr() const { return deletePendingAttr_; }
   bool deletePendingAttr( MrpAttribute const & attribute ) const {
      return isDeletePending( attribute );
   }
   bool isDeletePending( MrpAttribute const & attribute ) const;
   void deletePendingAttrIs( MrpAttribute const & attribute, bool v );
   void newDeletePendingAttr( MrpAttribute const & attribute, bool v ) {
      deletePendingAttrIs( attribute, v );
   }
   void deletePendingAttrDel( MrpAttribute const & attribute );
   void deletePendingAttrDelAll();

   // ---- transmit/FrameTransmission.cpp: closing frames ----------------------------------------
   void mrpTransmitTxPacket( Pelk::IntfId intfId, bool secondPktContext );
   // Both frames of the interface.
   void mrpTransmitTxAttributes( Pelk::IntfId intfId );
   // Every interface that has a first frame open.
   void mrpTransmitTxAttributes();

   // ---- transmit/SendDoor.cpp: keys of the Tx fields ------------------------------------------
   // The key of the value in the Tx field of the parse context's type; 0 for no such type.
   U64 mrpGetTxAttributeKey() const;

   // ---- topology/MrpConfig.cpp: times ---------------------------------------------------------
   // The interface's leave time in seconds: its override, unless that is 0, or the system's.
   Korv::Seconds mrpGetLeaveTime( Pelk::IntfId intfId ) const;

   // ---- topology/SpanningTree.cpp: port roles -------------------------------------------------
   // Mirrors of the spanning tree's status, in SpanningTreeMirrors.h.
   class KorvStpStatus;
   class KorvStpiStatus;
   class KorvMstiStatus;
   class KorvMstiPortStatus;
   template < class Mirror >
   using SpanningTreeMirrors = Korv::HashMap< Korv::Name, Korv::Ptr< Mirror > >;
   using PortRoles = Korv::HashMap< Pelk::IntfId, Stp::MstiPortStatus::Role >;

   // The reactor on the status that the agent gave; null if it gave none.
   Korv::Ptr< KorvStpStatus > const & stpStatus() const { return stpStatus_; }
   SpanningTreeMirrors< KorvStpiStatus > const & stpiStatus() const { return stpiStatus_; }
   // The role last seen on each interface while it was wanted, in standby too; no entry ever goes.
   PortRoles const & oldPortRole() const { return oldPortRole_; }
   Stp::MstiPortStatus::Role oldPortRole( Pelk::IntfId intfId ) const;

 private:
   // ---- frame/MrpSm.cpp, PamAccess.cpp --------------------------------------------------------
   // Runs at the end of construction, once.
   void handleInitialized();
   void rebuildAttrIter();
   // Called by handleInitialized, in standby too. Finds in `em` the directories at
   // "interface/status/all" and, in this unit's cell, "interface/status/local", and the network of
   // the namespace at "kni/ns/<name>/status".
   void doInitializePamMan();

   // ---- receive/MrpduParser.cpp, VectorDecoder.cpp --------------------------------------------
   // All read at the packet's front and consume what they read; nothing is put back. The reads are
   // not bounded by the frame: behind its data the receive buffer holds zeros.
   MrpParseStatus parseMessage( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseAttributeList( Korv::Ptr< Pelk::Pkt > const & pkt );
   void skipMessageDueToFutureProtocolVersion( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseVectorAttribute( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseMsrpVector( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseMvrpVector( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseThreePackedEvents( Korv::Ptr< Pelk::Pkt > const & pkt );
   MrpParseStatus parseThreeFourPackedEvents( Korv::Ptr< Pelk::Pkt > const & pkt );
   void processThreeAndFourPacked( Korv::Ptr< Pelk::Pkt > const & pkt, U8 event, U16 eventNum,
                                   U16 fourPackedPtr );
   // One value, its kind known.
   template < class Kind >
   void processValue( U8 event, U16 eventNum );
   template < class Kind >
   void saveValue();

   // ---- receive/ParsedAttributes.cpp ----------------------------------------------------------
   void mrpProcessRxLeaveAll( Pelk::IntfId intfId, U8 attributeType );
   void processParsedAttribute( MrpParsedAttributeKey key, Pelk::IntfId intfId );
   template < class Kind >
   void processRecord( MrpParsedAttribute const & record, Pelk::IntfId intfId );
   template < class Kind >
   bool isRefresh( U8 event ) const;
   template < class Kind >
   void fillFromSavedValue( Pelk::IntfId intfId, MrpParsedAttribute const & attribute );

   // ---- database/DatabaseAccess.cpp, ContextAttribute.h ---------------------------------------
   // What mrpGetAttribute found last, and the node of its type in the tree. Each is good for as
   // long as the state is the one that it was found in.
   struct Found {
      static constexpr U64 never = ~U64{ 0 };
      MrpAttrDatabase * attribute = nullptr;
      MrpIntfTypeApplicant * type = nullptr;
      U64 attributeAt = never;
      U64 typeAt = never;
   };
   // A state is the sum of the counts of all changes that could make a look-up by the parse context
   // find something else. Counts only rise, so that one sum cannot stand for two states.
   U64 typeState() const {
      return parseContext_->placeChanges() + Korv::membershipChanges< Korv::Entity >;
   }
   U64 attributeState() const {
      return parseContext_->attributeChanges() + Korv::membershipChanges< Korv::Entity > +
             Korv::membershipChanges< MrpAttrDatabase >;
   }
   MrpAttrDatabase * mrpFindAttribute( bool addIfNotFound );
   MrpAttrDatabase * mrpAddAttrToDatabase( Pelk::IntfId intfId, U8 attributeType, U64 attributeKey,
                                           bool txAttribute );
   MrpAttrDatabase * contextAttributeInTree() const;
   MrpApplicationDatabase * applicationDatabase() const;
   MrpIntfTypeApplicant * searchType( Pelk::IntfId intfId, U8 attributeType ) const;
   // searchType for the parse context, remembered in found_.
   MrpIntfTypeApplicant * contextType() const;

   void mrpPopulateMsrpValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute );
   void mrpPopulateMvrpValueInDatabase( MrpAttrDatabase & mrpAttribute, bool txAttribute );
   void mrpFillMsrpContextFromDatabase( MrpAttribute const & mrpAttribute );
   void mrpFillMvrpContextFromDatabase( MrpAttribute const & mrpAttribute );
   bool msrpRxVectorSameAsDatabaseAttr();
   bool mvrpRxVectorSameAsDatabaseAttr() const;
   template < class Kind >
   bool rxSameAs( MrpAttrDatabase const & stored ) const;

   // ---- database/PendingAttributes.cpp --------------------------------------------------------
   // The attribute to work on: the committed one, or a fresh pending copy.
   MrpAttrDatabase * addAttrToAddPending( MrpAttribute const & attribute );
   void removeAttrFromAddPending( MrpAttribute const & attribute );
   bool nothingIsPending() const { return addPendingAttr_.empty() && deletePendingAttr_.empty(); }

   // ---- transmit/SendDoor.cpp -----------------------------------------------------------------
   U64 msrpGetTxAttributeKey() const;
   U64 mvrpGetTxAttributeKey() const;

   // ---- topology/SpanningTree.cpp -------------------------------------------------------------
   // The role of a port may have changed, or its record come or gone. Writes the parse context.
   // Throws RangeException for an interface whose native VLAN is no VLAN's number.
   void handleRole( Korv::Name const & portName, Korv::Name const & mstiName,
                    Korv::Name const & stpiName );

   // What the agent gave, and whether it still holds the participant in standby.
   Korv::Ptr< Bridging::Config const > brConfig_;
   MrpLib * mrpLib_;
   Korv::Ptr< MrpConfig const > mrpConfig_;
   Korv::Ptr< MrpStatus > mrpStatus_;
   Korv::Ptr< KorvStpStatus > stpStatus_;
   Korv::Ptr< Bridging::Topology::Config const > brTopoConfig_;
   Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir_;
   Korv::Ptr< Mirel::EntityManager > em_;
   bool standbyMode_;

   // Packet access: made once, in doInitializePamMan.
   Korv::Ptr< Interface::AllIntfStatusDir > allIntfStatusDir_;
   Korv::Ptr< Interface::AllIntfStatusLocalDir > allIntfStatusLocalDir_;
   Korv::Ptr< Interface::DeviceIntfStatusDir > deviceIntfStatusDir_;
   Korv::Ptr< Interface::NetNsIntfStatusManagerRoot > intfStatusManagerRoot_;
   Korv::Ptr< Interface::PamDesiredIntfDir > desiredIntfDir_;
   Korv::Ptr< Interface::EthDevPamCollection > pamCollection_;
   Korv::Ptr< Interface::EthDevPamManager > pamMan_;
   Korv::Ptr< MrpPamSm > mrpPamSm_;

   // Spanning tree.
   PortRoles oldPortRole_;
   SpanningTreeMirrors< KorvStpiStatus > stpiStatus_;

   // The machines and what they share: null in standby.
   Korv::Ptr< Dovr::TimerWheel > timerWheel_;
   Korv::Ptr< MrpApplicantSm > applicantSm_;
   Korv::Ptr< MrpRegistrarSm > registrarSm_;
   Korv::Ptr< MrpLeaveAllSm > leaveAllSm_;
   Korv::Ptr< MrpParseContext > parseContext_;
   Korv::Ptr< MrpCounters > mrpCounters_;
   U8 maxAttrTypes_ = 0;

   // From the parser to the machines: the frame at hand.
   bool recycledPkt_ = false;
   RxLeaveAll mrpRxLeaveAll_;
   ParsedKeys mrpParsedAttributeKey_;
   MrpParsedAttributes mrpParsedAttribute_;
   ParsedKeys msrpParsedDomainKey_;

   // Database; of these the machines are null in standby.
   Korv::Ptr< MrpAttrLogSm > mrpAttrLogSm_;
   AttrIters mrpAttrIter_;
   DeletePending deletePendingAttr_;
   AddPending addPendingAttr_;
   Korv::Ptr< MrpDatabaseDeleteSm > mrpDatabaseDeleteSm_;
   Korv::Ptr< MrpDatabaseAddSm > mrpDatabaseAddSm_;
   mutable Found found_;

   bool initialized_ = false;
};

// The participant, fully initialised: when this returns it is live and may already be transmitting.
//
// application, applicationMacAddr and applicationEtype of mrpLib must be set before; mrpLib is not
// owned and must outlive the participant. stpStatus may be null. Needs an installed
// Korv::ActivityManager. The first participant of a process fixes the packet filter for all of
// them: one application a process. Throws RangeException for a namespace name that is too long, or
// when there is no memory.
Korv::Ptr< MrpSm >
mrpSmFactory( Korv::Ptr< Bridging::Config const > brConfig, MrpLib * mrpLib,
              Korv::Ptr< MrpConfig const > mrpConfig, Korv::Ptr< MrpStatus > mrpStatus,
              Korv::Ptr< Stp::Status const > stpStatus,
              Korv::Ptr< Bridging::Topology::Config const > brTopoConfig,
              Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir,
              Korv::Ptr< Mirel::EntityManager > em, bool standbyMode );

// The LeaveAll time of an interface in seconds, stretched at random by up to a half unless
// DISABLE_LEAVE_ALL_RANDOMIZATION is in the environment. Each call draws afresh.
Korv::Seconds getLeaveAllTime( MrpSm const & mrpSm, Pelk::IntfId intfId );

} // namespace Mrp
