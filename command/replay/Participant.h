// A participant alone on in-memory wires and the virtual clock, and what happens to it.
//
// Made at time 0, with its interfaces there and none of them enabled. Whoever drives it hands it
// frames and moves its time, and reads its timeline and its entities in between. It draws from the
// process's rand(), which nothing here seeds: the first one of a process always runs alike.
#pragma once

#include "mrp/frame/MrpSm.h"
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include "command/report/RecordingLib.h"

#include <functional>
#include <optional>
#include <vector>

namespace Command {

struct ParticipantSettings {
   struct Interface {
      Pelk::IntfId intfId;
      std::optional< Pelk::EthAddr > addr; // without one it has no entry
      std::optional< Korv::U32 > mtu;      // the same
   };

   Mrp::MrpApplication application;
   Pelk::EthAddr address; // the application's group address
   Korv::U16 ethertype;
   Pelk::EthAddr bridgeAddress;
   std::vector< Interface > interfaces;
   bool standby = false; // at the start
   // Called before the start; may be empty.
   std::function< void( Mrp::MrpConfig &, Mrp::MrpStatus & ) > prepare = {};
};

class Participant {
 public:
   explicit Participant( ParticipantSettings settings );
   Participant( Participant const & ) = delete;
   Participant & operator=( Participant const & ) = delete;
   // What it still sends as it goes is not recorded.
   ~Participant();

   ParticipantSettings const & settings() const { return settings_; }
   Memory::Host & host() { return host_; }
   Mrp::MrpConfig & config() { return *config_; }
   RecordingLib & lib() { return *lib_; }
   Mrp::MrpSm & sm() { return *sm_; }
   Mrp::MrpSm const & sm() const { return *sm_; }
   Timeline const & timeline() const { return timeline_; }

   void advanceTo( Korv::Seconds time ) { activity_.advanceTo( time ); }

   // A frame from the wire, now, through the filter.
   void deliver( Pelk::IntfId intfId, Memory::FrameBytes frame ) {
      deliver( intfId, frame, &Memory::Pam::deliver );
   }
   // The same past the filter, whatever the frame is.
   void deliverPastFilter( Pelk::IntfId intfId, Memory::FrameBytes frame ) {
      deliver( intfId, frame, &Memory::Pam::deliverAnything );
   }
   // How many frames the filter of an interface has held back, if it is enabled.
   Korv::U64 heldBack( Pelk::IntfId intfId ) const;

 private:
   void deliver( Pelk::IntfId intfId, Memory::FrameBytes frame,
                 bool ( Memory::Pam::*intake )( Memory::FrameBytes ) );

   ParticipantSettings settings_;
   Timeline timeline_;
   Memory::VirtualActivity activity_;
   Memory::Host host_;
   Korv::Ptr< Mrp::MrpConfig > config_;
   Korv::Ptr< Mrp::MrpStatus > status_;
   Korv::Ptr< RecordingLib > lib_;
   Korv::Ptr< Mrp::MrpSm > sm_;
};

} // namespace Command
