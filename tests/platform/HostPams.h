// What a participant sets up for packet access, over either kind of host: wishes on one side, the
// collection on the other.
#pragma once

#include "mrp/platform/interface/EthDevPamManager.h"
#include "mrp/platform/interface/NetNsIntfStatusManagerRoot.h"

#include <string>
#include <utility>

namespace Platform {

class HostPams : public Interface::EthDevPamCollection::Reactor {
 public:
   template < class Host >
   explicit HostPams( Host & host )
      : root_( new Interface::NetNsIntfStatusManagerRoot( nullptr, host.allIntfStatusDir(), nullptr,
                                                          false ) ) {
      notifierIs( collection.ptr() );
      root_->intfStatusManagerIs( nullptr, devices_, host.network(), "default" );
   }
   void onIntfPam( Pelk::IntfId const & intfId ) override {
      changes_ += ( collection->intfPam( intfId ) ? "+" : "-" ) + intfId.stringValue();
   }
   // "+eth0-eth1": what has come and gone since the last time.
   std::string changes() { return std::exchange( changes_, {} ); }

 private:
   Korv::Ptr< Interface::DeviceIntfStatusDir > devices_ =
      new Interface::DeviceIntfStatusDir( "devices" );
   Korv::Ptr< Interface::NetNsIntfStatusManagerRoot > root_;
   std::string changes_;

 public:
   Korv::Ptr< Interface::PamDesiredIntfDir > const desired =
      new Interface::PamDesiredIntfDir( "desired" );
   Korv::Ptr< Interface::EthDevPamCollection > const collection =
      new Interface::EthDevPamCollection( "pams" );
   Korv::Ptr< Interface::EthDevPamManager > const manager =
      new Interface::EthDevPamManager( desired, collection, devices_ );
};

} // namespace Platform
