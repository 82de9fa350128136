// The status of all interfaces, published by the agent.
#pragma once

#include "mrp/platform/interface/IntfDir.h"

namespace Interface {

class IntfStatus : public IntfEntry {
 public:
   IntfStatus( Pelk::IntfId const & intfId, Korv::U32 mtu ) : IntfEntry( intfId ), mtu_( mtu ) {}

   class Reactor : public Korv::ReactorOn< IntfStatus > {
    public:
      virtual void onMtu() {}
   };

   // In bytes.
   Korv::U32 mtu() const { return mtu_; }
   void mtuIs( Korv::U32 mtu ) { set( mtu_, mtu, &Reactor::onMtu ); }

 private:
   Korv::U32 mtu_;
};

// At "interface/status/all". An interface without an entry has no MTU of its own.
class AllIntfStatusDir : public IntfDir< IntfStatus > {
 public:
   using IntfDir::IntfDir;

   IntfStatus * intfStatusIs( Pelk::IntfId const & intfId, Korv::U32 mtu ) {
      auto const entry = findOrMake( intfId, mtu );
      entry->mtuIs( mtu );
      return intfStatus( intfId );
   }
};

// At this unit's "interface/status/local": the part of the former that is on this unit. It is
// handed on and nothing of it is read.
class AllIntfStatusLocalDir : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;
};

} // namespace Interface
