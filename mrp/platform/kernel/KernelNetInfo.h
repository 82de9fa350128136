// The network of one namespace: which devices there are, and a way to their frames.
//
// This is where platforms part: the in-memory network and the kernel's derive from this class, and
// what stands on it cannot tell which one it has.
#pragma once

#include "mrp/platform/kernel/PamSettings.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/pelk/IntfId.h"
#include "mrp/platform/pelk/Pam.h"

namespace KernelNetInfo {

// Owned by the agent, which publishes it under "kni/ns/<namespace>/status". A device that is
// replaced by another of the same name goes and comes.
class Status : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   class Reactor : public Korv::ReactorOn< Status > {
    public:
      // A device has come or gone.
      virtual void onDevice( Pelk::IntfId const & /* intfId */ ) {}
   };

   bool hasDevice( Pelk::IntfId const & intfId ) const { return devices_.isMember( intfId ); }
   Korv::HashMap< Pelk::IntfId, bool > const & devices() const { return devices_; }

   // Opens a device; null if it is not there or cannot be opened.
   virtual Korv::Ptr< Pelk::EthDevPam > newPam( Pelk::IntfId const & intfId,
                                                PamSettings const & settings ) = 0;

 protected:
   void deviceIs( Pelk::IntfId const & intfId ) {
      setMember( devices_, intfId, true, &Reactor::onDevice );
   }
   void deviceDel( Pelk::IntfId const & intfId ) {
      delMember( devices_, intfId, &Reactor::onDevice );
   }

 private:
   Korv::HashMap< Pelk::IntfId, bool > devices_;
};

} // namespace KernelNetInfo
