// The least that a participant needs around it: in-memory interfaces and an application that takes
// every join. The tests' Participant writes down what happens, which would be measured too.
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/platform/memory/Host.h"

#include "tests/support/Mrpdu.h"

#include <span>
#include <vector>

namespace Bench {

using Korv::U64;
using TestSupport::Bytes;

// Stands on the activity manager that is installed. Its own LeaveAll comes as good as never unless
// told otherwise, so that time can go on between rounds without one.
class Agent {
 public:
   Agent( Mrp::MrpApplication application, std::size_t interfaces,
          Korv::Seconds leaveAllTime = 1e6 );
   ~Agent();
   Agent( Agent const & ) = delete;
   Agent & operator=( Agent const & ) = delete;

   // The frame arrives and is worked off to its end. Past the socket filter, which serves one
   // application a process.
   void receive( std::size_t interface, Bytes const & frame ) {
      pams_[interface]->deliverPastFilter( frame );
   }
   // An application's declaration of a VLAN, on the first interface.
   void declareVlan( Korv::U16 vlanId );

   Mrp::MrpSm & sm() { return *sm_; }
   // Every entity that a participant publishes.
   Mrp::AttrLogMounts const & mounts() const { return mounts_; }
   Pelk::IntfId intfId( std::size_t interface ) const { return intfIds_[interface]; }

   U64 joins() const { return sm_->mrpCounters()->numOfJoinIndications(); }
   U64 framesSent() const { return sm_->mrpCounters()->numOfPktsTransmitted(); }
   // How many attributes of the type are in the tree, over all interfaces.
   std::size_t committed( Korv::U8 attributeType ) const;
   // Those of them that are registered.
   std::size_t registered( Korv::U8 attributeType ) const;

 private:
   template < class Wanted >
   std::size_t count( Korv::U8 attributeType, Wanted wanted ) const;

   Memory::Host host_;
   Korv::Ptr< Mrp::MrpLib > lib_;
   Korv::Ptr< Mrp::MrpStatus > status_;
   Korv::Ptr< Mrp::MrpSm > sm_;
   Mrp::AttrLogMounts mounts_;
   std::vector< Pelk::IntfId > intfIds_;
   std::vector< Memory::Pam * > pams_;
};

inline constexpr Korv::U16 allVlans = 4094;

// One frame with the event for each VLAN, 1 to 4,094.
Bytes vlansFrame( TestSupport::Event event );
Bytes vlanLeaveAllFrame();

// Stream ids without neighbours, in no order; always the same ones.
std::vector< U64 > scatteredStreams( std::size_t count );
// A vector for each stream, as many to a frame as 1,500 bytes hold.
std::vector< Bytes > talkerFrames( std::span< U64 const > streams, TestSupport::Event event );

} // namespace Bench
