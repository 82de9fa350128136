// A participant on in-memory interfaces and virtual time: bytes in, time forward, bytes and
// indications out. For test fixtures, benchmarks and fuzzers alike.
//
//    Participant mvrp( Mrp::MVRP, { "Ethernet1" } );
//    mvrp.receive( "Ethernet1", mvrpFrame( vlans( 10, { JoinIn } ) ) );
//    mvrp.advanceTo( 0.1 );
//    mvrp.indications()        { "join vlan 10 JoinIn on Ethernet1" }
//    mvrp.said()               what it sent, as text
//    mvrp.attribute( "Ethernet1", 10 )
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/topology/MrpConfig.h"

#include "tests/support/Decode.h"
#include "tests/support/Mrpdu.h"
#include "tests/support/RecordingLib.h"

#include <map>
#include <memory>

namespace TestSupport {

struct SentFrame {
   double time = 0;
   std::string interface;
   Bytes bytes;
};

// The bytes that the database keeps.
Bytes valueOf( Mrp::MrpAttrDatabase const & entry );

// One attribute as the machines see it, the pending copy ahead of the committed one.
struct AttributeState {
   Mrp::MrpApplicantState applicant{};
   Mrp::MrpRegistrarState registrar{};
   Bytes value;
   bool pending = false;   // it has a copy that waits to be committed
   bool committed = false; // it stands in the tree
   // "mrpQuietActive mrpIn"
   std::string states() const;
};

class Participant {
 public:
   struct Options {
      bool enabled = true; // all interfaces, from the start
      bool standby = false;
      bool randomLeaveAll = false;
      std::optional< U32 > mtu = 1500; // of each interface; none: no status entry
      // Several participants share a clock; whoever gives it has made it first.
      Memory::VirtualActivity * activity = nullptr;
      // Called before the participant is made.
      std::function< void( Mrp::MrpConfig & ) > configure = {};
   };

   // The interfaces are enabled in their order, at the time at hand: 0 unless the clock is shared.
   explicit Participant( Mrp::MrpApplication application,
                         std::vector< std::string > const & interfaces = { "Ethernet1" } )
      : Participant( application, interfaces, Options() ) {}
   Participant( Mrp::MrpApplication application, std::vector< std::string > const & interfaces,
                Options const & options );
   ~Participant();
   Participant( Participant const & ) = delete;
   Participant & operator=( Participant const & ) = delete;

   // The frame arrives and, unless in standby, is worked off to its end. It goes past the socket
   // filter, so that wrong addresses and types reach the participant. False for a frame that the
   // interface does not take.
   bool receive( std::string const & interface, Bytes const & frame );

   // Nothing of a frame waits between parser and machines, and no interface is queued: outside of
   // all notifications it has to be so.
   bool isIdle() const;

   void endStandby();

   // Changes one value of the configuration, for those who do anything at any time: which of seven,
   // and what it becomes if it is a leave time, one of LeaveAll, or a switch.
   void settingIs( unsigned which, Pelk::IntfId intfId, double leaveTime, double leaveAllTime,
                   bool on );

   void advanceTo( double time ) { activity_->advanceTo( time ); }
   void advanceBy( double duration ) { activity_->advanceBy( duration ); }

   // All frames that have left since the last clear(), in their order.
   std::vector< SentFrame > const & sent() const { return sent_; }
   // Called for each frame that leaves, last.
   std::function< void( SentFrame const & ) > onSent;
   // "Ethernet1: vlan{10 JoinIn}".
   std::vector< std::string > said() const;

   std::vector< std::string > indications() const;
   // Forgets frames and indications; moved() starts anew.
   void clear();
   // Off, frames and indications are not written down.
   void recordingIs( bool on ) { lib_->recording = on; }

   // An application's declaration: the value goes into the Tx field, the interface into the queue,
   // then mrpSendAttribute. The event is a MrpThreePackedEvent's number.
   template < class Value >
   void declare( std::string const & interface, Value const & value, unsigned event ) {
      declare( interface, value, event, { interface } );
   }
   template < class Value >
   void declare( std::string const & interface, Value const & value, unsigned event,
                 std::vector< std::string > const & queued ) {
      sendAttribute( interface, load( value ), event, queued );
   }
   // Loads the Tx field; the attribute's type.
   template < class Value >
   U8 load( Value const & value ) {
      lib_->txValueIs( Value::type, stored( value ) );
      return Value::type;
   }
   // mrpSendAttribute with whatever the Tx field holds.
   void sendAttribute( std::string const & interface, U8 type, unsigned event,
                       std::vector< std::string > const & queued );

   std::optional< AttributeState > attribute( std::string const & interface, U8 type,
                                              U64 key ) const;
   std::optional< AttributeState > attribute( std::string const & interface, U64 vlan ) const {
      return attribute( interface, vlanType, vlan );
   }
   // "mrpQuietActive mrpIn", or "none".
   std::string states( std::string const & interface, U8 type, U64 key ) const;
   std::string states( std::string const & interface, U64 vlan ) const {
      return states( interface, vlanType, vlan );
   }
   // Puts a committed attribute with these states there, past the machines.
   void attributeIs( std::string const & interface, U8 type, U64 key, Bytes const & value,
                     Mrp::MrpApplicantState applicant, Mrp::MrpRegistrarState registrar );

   Mrp::MrpCounters const & counters() const { return *sm_->mrpCounters(); }
   // The counters that have moved since the last call or clear(), in the order of
   // MrpCounters: "numOfMalformedPkts=2 numOfPktsProcessed=1". numOfPktsTransmitted is left out:
   // whatever else happens at a time decides what is transmitted.
   std::string moved();

   Protocol protocol() const { return protocol_; }
   RecordingLib & lib() { return *lib_; }
   Mrp::MrpSm & sm() { return *sm_; }
   Mrp::MrpConfig & config() { return *config_; }
   Mrp::MrpStatus & status() { return *status_; }
   Memory::Host & host() { return *host_; }
   Memory::VirtualActivity & activity() { return *activity_; }

 private:
   std::unique_ptr< Memory::VirtualActivity > ownActivity_;
   Memory::VirtualActivity * activity_;
   std::unique_ptr< Memory::Host > host_;
   Protocol protocol_;
   std::vector< SentFrame > sent_;
   std::map< std::string, U64 > counted_;
   Korv::Ptr< RecordingLib > lib_;
   Korv::Ptr< Mrp::MrpConfig > config_;
   Korv::Ptr< Mrp::MrpStatus > status_;
   Korv::Ptr< Mrp::MrpSm > sm_;
};

} // namespace TestSupport
