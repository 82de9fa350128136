// The agent's side on Linux: all that a participant is given, kept in step with the kernel.
#pragma once

#include "mrp/platform/linux/BridgePorts.h"
#include "mrp/platform/linux/LinkMonitor.h"
#include "mrp/platform/linux/Network.h"
#include "mrp/platform/mirel/HostEntities.h"

#include <functional>
#include <map>
#include <string>

namespace Linux {

// Keeps the entities as the kernel says, for the interfaces that are followed: while one exists,
// it has a device and entries for its MTU and address, and its Pams come and go with the wishes
// for them. A link that is down keeps all of it.
//
// Made once the activity is there, and ended before it. What participants that outlive the host
// find in the entities is what it last said.
class Host : public Mirel::HostEntities {
 public:
   // Reads the kernel's links. Throws std::system_error if it has no access to them.
   explicit Host( RealActivity & activity, Korv::Name const & name = "host" );
   ~Host();

   Korv::Ptr< Network > const & network() const { return network_; }

   // Follows the interface of this name. If it exists, its device and entries are there when this
   // returns; if not, they come when it does.
   void interfaceIs( Pelk::IntfId const & intfId );
   void interfaceDel( Pelk::IntfId const & intfId );

   // The Pam that a participant has opened there last, or null: for its counters.
   Pam * pam( Pelk::IntfId const & intfId ) const { return network_->pam( intfId ); }

   // Called when an interface that a participant wants exists and cannot be opened. One callback.
   void onProblem( Network::ProblemCallback callback ) {
      network_->onProblem( std::move( callback ) );
   }

 private:
   Host( RealActivity & activity, Korv::Name const & name, Korv::Ptr< Network > network );
   // What the kernel says of the link of this name has changed.
   void handleLink( std::string const & name );
   void handleGone( Pelk::IntfId const & intfId );

   Korv::Ptr< Network > network_;
   std::map< std::string, Pelk::IntfId, std::less<> > followed_;
   BridgePorts bridgePorts_;
   LinkMonitor linkMonitor_;
};

} // namespace Linux
