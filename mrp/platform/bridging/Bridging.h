// The bridge's configuration, as far as a participant reads it. All of it belongs to the agent.
#pragma once

#include "mrp/platform/bridging/VlanId.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/platform/pelk/IntfId.h"

namespace Bridging {

class VlanConfig : public Korv::Entity {
 public:
   explicit VlanConfig( VlanId vlanId ) : vlanId_( vlanId ) {}

   VlanId vlanId() const { return vlanId_; }

 private:
   VlanId vlanId_;
};

class SwitchIntfConfig : public Korv::Entity {
 public:
   explicit SwitchIntfConfig( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}

   Pelk::IntfId const & intfId() const { return intfId_; }

   // As configured, 0 for none. Numbers that are no VLAN's are taken too: making a VlanId of one
   // throws.
   Korv::U16 nativeVlan() const { return nativeVlan_; }
   void nativeVlanIs( Korv::U16 nativeVlan ) { nativeVlan_ = nativeVlan; }

 private:
   Pelk::IntfId intfId_;
   Korv::U16 nativeVlan_ = 0;
};

class Config : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   Pelk::EthAddr const & bridgeMacAddr() const { return bridgeMacAddr_; }
   void bridgeMacAddrIs( Pelk::EthAddr const & addr ) { bridgeMacAddr_ = addr; }

   Korv::OrderedMap< VlanId, Korv::Ptr< VlanConfig > > const & vlanConfig() const {
      return vlanConfig_;
   }
   // The VLAN's configuration, or null.
   VlanConfig * vlanConfig( VlanId vlanId ) const;
   VlanConfig * vlanConfigIs( VlanId vlanId );
   void vlanConfigDel( VlanId vlanId ) { vlanConfig_.erase( vlanId ); }

   Korv::HashMap< Pelk::IntfId, Korv::Ptr< SwitchIntfConfig > > const & switchIntfConfig() const {
      return switchIntfConfig_;
   }
   SwitchIntfConfig * switchIntfConfig( Pelk::IntfId const & intfId ) const;
   SwitchIntfConfig * switchIntfConfigIs( Pelk::IntfId const & intfId );
   void switchIntfConfigDel( Pelk::IntfId const & intfId ) { switchIntfConfig_.erase( intfId ); }

 private:
   Pelk::EthAddr bridgeMacAddr_;
   Korv::OrderedMap< VlanId, Korv::Ptr< VlanConfig > > vlanConfig_;
   Korv::HashMap< Pelk::IntfId, Korv::Ptr< SwitchIntfConfig > > switchIntfConfig_;
};

namespace Topology {

// The mapping from VLANs to tree instances. It is handed on and nothing of it is read.
class Config : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;
};

} // namespace Topology

} // namespace Bridging
