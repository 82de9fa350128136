// Which interfaces forward: the context in which a bridge passes registrations on.
#pragma once

#include "mrp/frame/MrpLib.h"
#include "mrp/platform/stp/Stp.h"

#include <functional>
#include <memory>
#include <vector>

namespace Command {

// An interface forwards if its role in its base topology is one that forwards, and also if it has
// no role there: a port that no spanning tree knows of has nothing to wait for.
//
// Owned by the application, for which it watches the status of the spanning tree. Asked only when
// the participant is there.
class ForwardingPorts {
 public:
   // `changed` is called when any answer may be another one than before; from within the
   // notification, so that others may not have heard of it yet.
   ForwardingPorts( Mrp::MrpLib const & lib, Korv::Ptr< Stp::Status const > stpStatus,
                    std::function< void() > changed );
   ForwardingPorts( ForwardingPorts const & ) = delete;
   ForwardingPorts & operator=( ForwardingPorts const & ) = delete;
   ~ForwardingPorts();

   bool forwards( Pelk::IntfId intfId ) const;

   // Ties the watches to the records that there are now. Called by the owner some time after
   // `changed`, from outside of it, before it asks which interfaces forward.
   void refresh();

 private:
   template < class Record >
   class Watch;
   class StatusWatch;
   class StpiWatch;
   class MstiWatch;
   class PortWatch;

   template < class Watch, class Record >
   void watch( Record const & record );
   void handleChange();

   Mrp::MrpLib const & lib_;
   Korv::Ptr< Stp::Status const > stpStatus_; // may be null
   std::function< void() > changed_;
   std::vector< std::unique_ptr< Korv::ReactorBase > > watches_;
   bool isStale_ = true;
};

} // namespace Command
