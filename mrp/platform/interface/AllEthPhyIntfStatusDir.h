// The Ethernet addresses of the ports, published by the agent.
#pragma once

#include "mrp/platform/interface/IntfDir.h"
#include "mrp/platform/pelk/EthAddr.h"

namespace Interface {

class EthPhyIntfStatus : public IntfEntry {
 public:
   EthPhyIntfStatus( Pelk::IntfId const & intfId, Pelk::EthAddr const & addr )
      : IntfEntry( intfId ), addr_( addr ) {}

   class Reactor : public Korv::ReactorOn< EthPhyIntfStatus > {
    public:
      virtual void onAddr() {}
   };

   Pelk::EthAddr const & addr() const { return addr_; }
   void addrIs( Pelk::EthAddr const & addr ) { set( addr_, addr, &Reactor::onAddr ); }

 private:
   Pelk::EthAddr addr_;
};

// A port without an entry sends with the bridge's address.
class AllEthPhyIntfStatusDir : public IntfDir< EthPhyIntfStatus > {
 public:
   using IntfDir::IntfDir;

   EthPhyIntfStatus * intfStatusIs( Pelk::IntfId const & intfId, Pelk::EthAddr const & addr ) {
      if ( auto * const entry = IntfDir::intfStatusIs( intfId, addr ) ) {
         entry->addrIs( addr );
      }
      return intfStatus( intfId );
   }
};

} // namespace Interface
