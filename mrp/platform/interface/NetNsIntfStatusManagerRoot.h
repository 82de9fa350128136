// Fills a participant's directory of devices from the network of a namespace.
#pragma once

#include "mrp/platform/interface/AllIntfStatusDir.h"
#include "mrp/platform/interface/DeviceIntfStatusDir.h"

#include <cstddef>

namespace Interface {

// Mirrors the devices of one network into one directory, for as long as it lives.
class IntfStatusManager : public Korv::NamedEntity {
 public:
   IntfStatusManager( Korv::Name namespaceName, Korv::Ptr< DeviceIntfStatusDir > dir,
                      Korv::Ptr< KernelNetInfo::Status > kernelStatus );

 private:
   class Kernel : public KernelNetInfo::Status::Reactor {
    public:
      explicit Kernel( IntfStatusManager & manager ) : manager_( manager ) {}
      void onDevice( Pelk::IntfId const & intfId ) override { manager_.handleDevice( intfId ); }

    private:
      IntfStatusManager & manager_;
   };

   void handleDevice( Pelk::IntfId const & intfId );

   Korv::Ptr< DeviceIntfStatusDir > dir_;
   Korv::Ptr< KernelNetInfo::Status > kernelStatus_;
   Kernel kernel_{ *this };
};

// Owns a status manager for each namespace. The directories of all interfaces and the filter by
// namespace are taken as they are given: one participant has one namespace here.
class NetNsIntfStatusManagerRoot : public Korv::PtrInterface {
 public:
   // Stands for the framework's activity, of which there is none here.
   using Activity = std::nullptr_t;

   NetNsIntfStatusManagerRoot( Activity activity, Korv::Ptr< AllIntfStatusDir const > all,
                               Korv::Ptr< AllIntfStatusLocalDir const > local, bool filterByNetNs );

   // The namespace's manager; the one that is there, if it has one.
   IntfStatusManager * intfStatusManagerIs( Activity activity, Korv::Ptr< DeviceIntfStatusDir > dir,
                                            Korv::Ptr< KernelNetInfo::Status > kernelStatus,
                                            Korv::Name const & namespaceName );

   bool filterByNetNs() const { return filterByNetNs_; }

 private:
   Korv::Ptr< AllIntfStatusDir const > all_;
   Korv::Ptr< AllIntfStatusLocalDir const > local_;
   bool filterByNetNs_;
   Korv::HashMap< Korv::Name, Korv::Ptr< IntfStatusManager > > intfStatusManager_;
};

} // namespace Interface
