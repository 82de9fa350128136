#include "command/run/PropagatingLib.h"

#include "mrp/frame/MrpSm.h"

#include <algorithm>
#include <utility>

namespace Command {

namespace {

using Interfaces = std::vector< Pelk::IntfId >;

bool contains( Interfaces const & interfaces, Pelk::IntfId intfId ) {
   return std::ranges::find( interfaces, intfId ) != interfaces.end();
}

bool hasOtherThan( Interfaces const & interfaces, Pelk::IntfId intfId ) {
   return std::ranges::any_of( interfaces, [&]( auto other ) { return other != intfId; } );
}

} // namespace

void PropagatingLib::bridgeIs( Korv::Ptr< Stp::Status const > const & stpStatus ) {
   forwardingPorts_.emplace( *this, stpStatus, [this] { settleAllLater(); } );
}

bool PropagatingLib::mrpJoinIndication( Mrp::MrpParameters const & indication ) {
   if ( forwardingPorts_ && indication.attributeEvent() == Mrp::newEvent ) {
      news_.insert( { indication.intfId(), mrpSm()->parseContext()->attributeKey() } );
   }
   return DeclaringLib::mrpJoinIndication( indication );
}

DeclaringLib::Keys PropagatingLib::allKeys() const {
   Keys keys = knownKeys( Mrp::vlanVector );
   keys.insert( vlans_.begin(), vlans_.end() );
   return keys;
}

void PropagatingLib::settle( Keys const & keys ) {
   Interfaces const before = std::exchange( forwarding_, forwardingNow() );
   for ( Pelk::IntfId const intfId : forwarding_ ) {
      if ( !contains( before, intfId ) ) {
         askNeighbours( intfId );
      }
   }
   for ( U64 const vlan : keys ) {
      settleVlan( vlan );
   }
   news_.clear();
}

Interfaces PropagatingLib::forwardingNow() {
   Interfaces forwarding;
   if ( forwardingPorts_ ) {
      forwardingPorts_->refresh();
      std::ranges::copy_if( interfaces(), std::back_inserter( forwarding ), [this]( auto intfId ) {
         return forwardingPorts_->forwards( intfId );
      } );
   }
   return forwarding;
}

void PropagatingLib::settleVlan( U64 vlan ) {
   Interfaces registering;
   Interfaces news;
   if ( vlan >= Bridging::VlanId::first && vlan <= Bridging::VlanId::last ) {
      for ( Pelk::IntfId const intfId : forwarding_ ) {
         if ( isRegistered( intfId, Mrp::vlanVector, vlan ) ) {
            registering.push_back( intfId );
         }
         if ( news_.contains( { intfId, vlan } ) ) {
            news.push_back( intfId );
         }
      }
   }
   auto const number = static_cast< Korv::U16 >( vlan );
   bool const isOwn = vlans_.contains( number );
   for ( Pelk::IntfId const intfId : interfaces() ) {
      bool const isPassedOn =
         contains( forwarding_, intfId ) && hasOtherThan( registering, intfId );
      if ( isOwn || isPassedOn ) {
         declare< Mrp::VlanKind >( intfId, Mrp::MvrpVlanAttribute( number ),
                                   isPassedOn && hasOtherThan( news, intfId ) );
      } else {
         withdraw< Mrp::VlanKind >( intfId, vlan );
      }
   }
}

} // namespace Command
