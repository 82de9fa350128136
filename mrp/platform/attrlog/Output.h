// One connection's outgoing stream, short of the transport: messages in a buffer with a bound, and
// the flows that wait for room in it.
//
// Owned by whoever runs the connection, and outlives the adapters that are attached to it. It never
// waits for anybody: past the bound an adapter keeps marks instead of messages, and what the marks
// stand for is read when there is room again.
//
//  1. Messages are whole in the buffer, in the order in which they were written.
//  2. An adapter with something pending stands in the queue of flows, once.
//  3. Of one adapter at most, the newcomer, nothing has been said yet. It is told before any other
//     message, so that the end of a collection does not overtake its last member, or when the
//     transport comes for what there is.
#pragma once

#include "mrp/platform/attrlog/Messages.h"
#include "mrp/platform/korv/Notifier.h"

#include <list>
#include <vector>

namespace Korv::NboAttrLog {

class Adapter;

class Output {
 public:
   static constexpr std::size_t usualBound = 64 * 1024;
   static constexpr std::size_t turnBytes = 64 * 1024;

   // Begins with the greeting.
   explicit Output( std::size_t bound = usualBound );
   Output( Output const & ) = delete;
   Output & operator=( Output const & ) = delete;
   virtual ~Output() = default;

   // For adapters, which ask before each step. The few messages of one step may pass the bound.
   bool hasSufficientBuffer() const { return bytes() < bound_; }
   // For flows. A turn writes only so much, however much the transport takes: the engine waits.
   bool continueFlowOut() const { return hasSufficientBuffer() && written_ < turnEnd_; }
   // Counted up from 1, never used twice.
   U64 newIdentifier() { return ++lastIdentifier_; }
   // One message or several, which `put( to )` puts to what it is given, twice the same.
   template < class Put >
   void doWrite( Put const & put ) {
      doTellNewcomer();
      ByteCount count;
      put( count );
      if ( buffer_.size() - end_ < count.bytes() ) [[unlikely]] {
         doMakeRoom( count.bytes() );
      }
      ByteWriter writer( buffer_.data() + end_ );
      put( writer );
      end_ += count.bytes();
      written_ += count.bytes();
      if ( bytes() >= heardFrom_ ) {
         handleBytes();
      }
   }
   void doSendMarker( U64 entity, U16 attrId, Marker marker ) {
      doWrite( [&]( auto & to ) { putMarker( to, entity, attrId, marker ); } );
   }

   // A stream that is not ours to write on, unless it can be made so.
   bool readOnly() const { return readOnly_; }
   void readOnlyIs( bool readOnly ) { readOnly_ = readOnly; }
   virtual bool convertedToWritable() { return false; }

   // A child that gets its values as soon as it is made, as one does that enters the tree, is told
   // once and with all of them, for the price of a pointer here. The entity is kept until then: its
   // adapter does not hear of its end.
   void newcomerIs( Adapter & adapter, Notifier const & entity, U64 parent, U16 parentAttrId );
   bool isNewcomer( Adapter const & adapter ) const { return newcomer_.adapter == &adapter; }
   void newcomerDel() { newcomer_ = {}; }
   void doTellNewcomer() {
      if ( newcomer_.adapter ) [[unlikely]] {
         doStartNewcomer();
      }
   }

   // Something was thrown while an adapter worked off a notification. The engine never hears of it:
   // the stream has lost a change and has to end.
   void onNotificationException() {
      failed_ = true;
      handleFailed();
   }
   // No more is written: it has failed, or nobody is there any more.
   bool failed() const { return failed_; }
   void doEnd() { failed_ = true; }

   // For the transport: what waits, front first; what of it has gone.
   std::size_t bytes() const { return end_ - gone_; }
   std::span< U8 const > front() const { return { buffer_.data() + gone_, bytes() }; }
   void frontDel( std::size_t count );
   // Tells the newcomer, and resumes flows for as long as there is room, for one turn. What is left
   // waits for the next.
   void doFlowOut();
   // Bounds what is written while it lives.
   struct Turn {
      explicit Turn( Output & of ) : output( of ) { of.turnEnd_ = of.written_ + turnBytes; }
      Turn( Turn const & ) = delete;
      Turn & operator=( Turn const & ) = delete;
      ~Turn() { output.turnEnd_ = ~U64{ 0 }; }
      Output & output;
   };
   // Nothing waits, no flow is pending and nobody has still to be told of.
   bool idle() const { return bytes() == 0 && flows_.empty() && !newcomer_.adapter; }

 protected:
   // There is something more: at least so many bytes wait as the transport wants to hear of, or a
   // flow or a newcomer waits for its turn, perhaps with no byte yet. Only idle() says that all is
   // told.
   virtual void handleBytes() {}
   void heardFromIs( std::size_t bytes ) { heardFrom_ = bytes; }
   // Nothing of what waits may be sent any more; a message may have remained half.
   virtual void handleFailed() noexcept {}

 private:
   friend class Adapter;
   using Flows = std::list< Adapter * >;

   void doMakeRoom( std::size_t count );
   void doStartNewcomer();

   std::size_t bound_;
   // What waits stands from gone_ to end_; behind it is room.
   std::vector< U8 > buffer_;
   std::size_t gone_ = 0;
   std::size_t end_ = 0;
   U64 written_ = 0; // bytes, ever
   U64 turnEnd_ = ~U64{ 0 };
   Flows flows_;
   struct {
      Adapter * adapter = nullptr;
      Ptr< Notifier const > entity;
      U64 parent = 0;
      U16 parentAttrId = 0;
   } newcomer_;
   std::size_t heardFrom_ = 1;
   U64 lastIdentifier_ = 0;
   bool readOnly_ = false;
   bool failed_ = false;
};

} // namespace Korv::NboAttrLog
