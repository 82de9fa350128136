// Three hosts in a row on in-memory wires, the one in the middle a bridge: it declares each VLAN on
// the side that does not register it. Left declares VLAN 10 and is then cut off; right hears of
// both.
//
// What command/run/PropagatingLib.h does for any number of ports, a spanning tree and lost links,
// this does for two ports.
#include "mrp/frame/MrpSm.h"
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"
#include "mrp/platform/memory/Wire.h"

#include <iostream>

using Mrp::MrpParameters;

// A host's participant, its interfaces enabled.
class Station : public Mrp::MrpLib {
 public:
   using Ports = std::vector< Pelk::IntfId >;

   static Korv::Ptr< Station > make( std::string const & name, Ports const & ports ) {
      Korv::Ptr< Station > const station( new Station( name, ports ) );
      station->applicationIs( Mrp::MVRP );
      station->applicationMacAddrIs( Pelk::EthAddr( "01:80:c2:00:00:21" ) );
      station->applicationEtypeIs( 0x88f5 );
      Memory::Host & host = station->host_;
      for ( Pelk::IntfId const & port : ports ) {
         host.interfaceIs( port, Pelk::EthAddr( "02:00:00:00:00:01" ), 1500 );
      }
      station->participant_ =
         Mrp::mrpSmFactory( host.brConfig(), station.ptr(), Mrp::mrpConfigFactory( "config" ),
                            Mrp::mrpStatusFactory( "status" ), host.stpStatus(),
                            host.brTopoConfig(), host.ethPhyIntfStatusDir(), host.em(), false );
      for ( Pelk::IntfId const & port : ports ) {
         station->mrpInterfaceEnable( port );
      }
      return station;
   }
   Memory::Device * device( Pelk::IntfId const & port ) { return host_.device( port ); }

   // A Join or a Lv.
   void say( Mrp::MrpThreePackedEvent event, Korv::U16 vlan, Pelk::IntfId const & port ) {
      mvrpVlanVectorTxIs( Mrp::MvrpVlanAttribute( vlan ) );
      mrpOutIntfQueueEnq( port );
      mrpSendAttribute( MrpParameters( port, Mrp::vlanVector, static_cast< Korv::U8 >( event ) ) );
   }

   bool mrpJoinIndication( MrpParameters const & join ) override {
      heard( join, " joins VLAN ", Mrp::joinInEvent );
      return false;
   }
   void mrpLeaveIndication( MrpParameters const & leave ) override {
      heard( leave, " leaves VLAN ", Mrp::lvEvent );
   }

 private:
   Station( std::string name, Ports ports )
      : name_( std::move( name ) ), ports_( std::move( ports ) ) {}

   void heard( MrpParameters const & what, char const * words, Mrp::MrpThreePackedEvent passOn ) {
      Korv::U16 const vlan = mvrpVlanVectorRx().vlanId();
      std::cout << "   " << Korv::now() << " s  " << name_ << ": " << what.intfId() << words << vlan
                << '\n';
      for ( Pelk::IntfId const & port : ports_ ) {
         if ( port != what.intfId() ) {
            say( passOn, vlan, port );
         }
      }
   }

   std::string name_;
   Ports ports_;
   Memory::Host host_;
   Korv::Ptr< Mrp::MrpSm > participant_;
};

int main() {
   Memory::VirtualActivity activity;
   Pelk::IntfId const eth0( "eth0" );
   Pelk::IntfId const p0( "p0" );
   Pelk::IntfId const p1( "p1" );
   auto const left = Station::make( "left", { eth0 } );
   auto const bridge = Station::make( "bridge", { p0, p1 } );
   auto const right = Station::make( "right", { eth0 } );
   Memory::Wire leftWire;
   leftWire.join( left->device( eth0 ) );
   leftWire.join( bridge->device( p0 ) );
   Memory::Wire rightWire;
   rightWire.join( bridge->device( p1 ) );
   rightWire.join( right->device( eth0 ) );

   std::cout << "left declares VLAN 10\n";
   left->say( Mrp::joinInEvent, 10, eth0 );
   activity.advanceBy( 1 );
   std::cout << "left is cut off; nobody answers for it at the next LeaveAll\n";
   leftWire.leave( *left->device( eth0 ) );
   activity.advanceBy( 20 );
}
