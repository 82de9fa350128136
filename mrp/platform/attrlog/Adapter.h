// One entity on one stream: it sends what changes, resends the whole when the stream begins or has
// fallen behind, and at the other end of a stream applies what arrives.
//
// An adapter lives as long as its entity stands on the stream: a root's is owned by the
// connection, a child's by the adapter of its parent. What is the same for all entities is here;
// EntityAdapter.h generates the rest from the entity's table of attributes.
//
//  1. Direct mode: nothing is pending, a change is written at once. Otherwise there is a FlowOut,
//     which says what is pending, and the adapter stands in the output's queue of flows. A root
//     that changes many times a frame never writes at once (EntityAdapter::gathers), and a newcomer
//     (Output.h) says and hears nothing before it is told of.
//  2. Nothing is sent about an entity before its orphan record.
//  3. A value that is being received is not sent.
#pragma once

#include "mrp/platform/attrlog/Output.h"

#include <memory>
#include <set>

namespace Korv::NboAttrLog {

class Input;

class Adapter {
 public:
   enum class SyncMode : U8 { direct, synchronising };
   static constexpr std::size_t noLimit = ~std::size_t{ 0 };

   Adapter() = default;
   Adapter( Adapter const & ) = delete;
   Adapter & operator=( Adapter const & ) = delete;
   virtual ~Adapter();

   U64 identifier() const { return identifier_; }
   Output * output() const { return output_; }

   // Sending.
   //
   // Attaches to a stream, from the start: another identifier, the orphan record, everything. Null
   // detaches, and changes go nowhere; so does a stream for an entity that has ended.
   void doRemountSelf( Output * output );
   // The same for a child, with its place under its parent's identifier.
   void handleAttached( Output * output, U64 parent, U16 parentAttrId ) {
      doStart( output, parent, parentAttrId );
   }
   // Puts that off until the stream says something else. Meanwhile it hears nothing.
   void handleNewcomer( Output * output, Notifier const & entity, U64 parent, U16 parentAttrId ) {
      output_ = output;
      output->newcomerIs( *this, entity, parent, parentAttrId );
   }
   // Drops adapters below this one, at most `limit`, which it counts down. If some of the limit is
   // left, none are left below.
   virtual void doDropChildren( std::size_t & limit ) = 0;
   // Suspended, it hears nothing; afterwards everything is sent anew.
   bool suspended() const { return suspended_; }
   void suspendedIs( bool suspended );
   // Writes also past the output's bound.
   bool forced() const { return forced_; }
   void forcedIs( bool forced ) { forced_ = forced; }
   // Synchronising: something is pending, or at the receiving end a collection is under way.
   SyncMode syncMode() const { return syncMode_; }

   // Called by the output when there is room: goes on where it was.
   void doResumeFlowOut();

   // Receiving.
   //
   // Applies a message or a marker; throws a StreamError for one that makes no sense.
   virtual void handleAttrDeserialization( S16 attrId, ByteReader & in ) = 0;
   virtual void handleAttrTransaction( U16 attrId, Marker marker ) = 0;
   // Every collection of the entity has been brought as a whole since the stream began.
   virtual bool isBrought() const = 0;
   // What has been received about this attribute is being applied.
   bool handlingFlowInFor( U16 attrId ) const {
      return handling_ == attrId || handlingTransaction_ == attrId;
   }

 protected:
   // What has still to be sent. The marks of the attributes are added by EntityAdapter.
   struct FlowOut {
      virtual ~FlowOut() = default;
      // The resume point.
      U16 attrId = 0;
      void attrIdIs( U16 at ) { attrId = at; }
      // Collections whose resync has been begun and is to begin again.
      std::set< U16 > pendingAborts;
      // In the output's queue; not while the adapter is suspended.
      bool queued = false;
      Output::Flows::iterator place;
   };

   // What becomes of a change of an attribute: it is not sent; it is written now; it is marked, to
   // be sent by the flow.
   enum class Way : U8 { stop, write, mark };
   Way wayOut( U16 attrId, char const * name );
   // While something is pending: whether the attribute may go ahead of it.
   virtual bool prepareImmediateTransmission( U16 attrId, bool noBuffer ) const = 0;
   [[noreturn]] static void doThrowReadOnly( char const * attribute );
   void syncModeIs( SyncMode mode ) { syncMode_ = mode; }

   FlowOut * flowOut() const { return flowOut_.get(); }
   // There is one from now on, resuming at the attribute or before it.
   void flowOutIs( U16 attrId );
   void flowQueuedIs( bool queued );
   void freeResyncState();
   void doStart( Output * output, U64 parent, U16 parentAttrId );

   virtual std::unique_ptr< FlowOut > createFlowOut() const = 0;
   // Marks everything, collections as not synced.
   virtual void doMarkAll() = 0;
   // Works off what is pending from the attribute on. 0 when done, else where to come back to.
   virtual U16 handleAttrFlowOut( U16 attrId ) = 0;
   // The orphan record and, if there is a parent, the child's place: its key and identifier under
   // the parent's identifier.
   virtual void doSerializeOrphan( U64 parent, U16 parentAttrId ) = 0;
   // These and everything else, in one step without a flow. False, with nothing done, if that is
   // too much.
   virtual bool doSerializeAll( U64 parent, U16 parentAttrId ) = 0;
   // Not once the entity has gone.
   virtual bool hasEntity() const = 0;
   // From now on it hears what changes, whatever it heard before.
   virtual void doListen() = 0;

   // Runs what a notification asks for; what it throws ends the stream, not the engine.
   template < class F >
   void guarded( F && work ) {
      try {
         work();
      } catch ( ... ) {
         output_->onNotificationException();
      }
   }

   // While it lives, changes of the attribute are those that have been received.
   struct Handling {
      Handling( Adapter & of, U16 attrId ) : adapter( of ) { adapter.handling_ = attrId; }
      Handling( Handling const & ) = delete;
      Handling & operator=( Handling const & ) = delete;
      ~Handling() { adapter.handling_ = 0; }
      Adapter & adapter;
   };

   // The collection that has been received as a whole, while members that were not in it are being
   // deleted; 0 for none.
   void handlingTransactionIs( U16 attrId ) { handlingTransaction_ = attrId; }

   // At the receiving end: where the adapter is known by its identifier.
   Input * input() const { return input_; }
   void inputIs( Input * input, U64 identifier );

 private:
   friend class Output; // doStart, of a newcomer

   Output * output_ = nullptr;
   Input * input_ = nullptr;
   U64 identifier_ = 0;
   std::unique_ptr< FlowOut > flowOut_;
   U16 handling_ = 0;
   U16 handlingTransaction_ = 0;
   SyncMode syncMode_ = SyncMode::direct;
   bool suspended_ = false;
   bool forced_ = false;
};

} // namespace Korv::NboAttrLog
