// The status of all interfaces, published by the agent.
#pragma once

#include "mrp/platform/interface/IntfDir.h"

#include <optional>

namespace Interface {

class IntfStatus : public IntfEntry {
 public:
   IntfStatus( Pelk::IntfId const & intfId, Korv::U32 mtu, bool up )
      : IntfEntry( intfId ), mtu_( mtu ), up_( up ) {}

   class Reactor : public Korv::ReactorOn< IntfStatus > {
    public:
      virtual void onMtu() {}
      virtual void onUp() {}
   };

   // In bytes.
   Korv::U32 mtu() const { return mtu_; }
   void mtuIs( Korv::U32 mtu ) { set( mtu_, mtu, &Reactor::onMtu ); }
   // Switched on, and with a partner at the other end. Packet access does not ask.
   bool up() const { return up_; }
   void upIs( bool up ) { set( up_, up, &Reactor::onUp ); }

 private:
   Korv::U32 mtu_;
   bool up_;
};

// At "interface/status/all". An interface without an entry has no MTU of its own.
class AllIntfStatusDir : public IntfDir< IntfStatus > {
 public:
   using IntfDir::IntfDir;

   // An interface is up unless something else has been said.
   IntfStatus * intfStatusIs( Pelk::IntfId const & intfId, Korv::U32 mtu,
                              std::optional< bool > up = {} ) {
      Korv::Ptr const entry( IntfDir::intfStatusIs( intfId, mtu, up.value_or( true ) ) );
      if ( entry ) {
         entry->mtuIs( mtu );
         entry->upIs( up.value_or( entry->up() ) );
      }
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
