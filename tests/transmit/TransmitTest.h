// A participant whose frames are filled value by value, through the machines' door, so that each
// event is the test's choice.
#pragma once

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {

inline std::string const et1 = "Ethernet1";
inline std::string const et2 = "Ethernet2";

class Sender : public Participant {
 public:
   using Participant::Participant;

   template < class Value >
   Sender & send( Value const & value, unsigned event, bool second = false,
                  std::string const & interface = et1 ) {
      Pelk::IntfId const intfId( interface );
      lib().mrpSendAttributeIntf(
         Mrp::MrpParameters( intfId, load( value ), static_cast< U8 >( event ) ), intfId, second );
      return *this;
   }
   Sender & leaveAll( U8 type ) {
      lib().mrpSendLeaveAll( type, Pelk::IntfId( et1 ) );
      return *this;
   }
   // The next vector that is opened carries the LeaveAll mark.
   Sender & mark() {
      sm().parseContext()->sendTxLvAllIs( true );
      return *this;
   }
   bool isMarked() { return sm().parseContext()->sendTxLvAll(); }

   bool isOpen( bool second = false, std::string const & interface = et1 ) {
      Pelk::IntfId const intfId( interface );
      return ( second ? lib().mrpTxSecondPacketContext( intfId )
                      : lib().mrpTxPacketContext( intfId ) ) != nullptr;
   }

   // Closes the first frame on Ethernet1: its MRPDU from the ProtocolVersion on.
   Bytes mrpdu() {
      std::size_t const before = sent().size();
      sm().mrpTransmitTxPacket( Pelk::IntfId( et1 ), false );
      EXPECT_EQ( sent().size(), before + 1 );
      return { sent().back().bytes.begin() + 14, sent().back().bytes.end() };
   }
   // The same as text.
   std::string text() {
      mrpdu();
      return says( sent().back().bytes );
   }
};

// Told of each frame that leaves, while it does.
struct FrameWatcher : Mrp::MrpCounters::Reactor {
   explicit FrameWatcher( Participant & participant ) {
      notifierIs( participant.sm().mrpCounters().ptr() );
   }
   void onNumOfPktsTransmitted() override {
      auto const now = told; // which may set another
      now();
   }
   std::function< void() > told = [] {};
};

} // namespace TestSupport
