// The smallest agent: an MVRP participant on an in-memory host hears a neighbour declare VLAN 100
// and says so. On a real interface only the host is another one.
#include "mrp/frame/MrpSm.h"
#include "mrp/platform/memory/Host.h"
#include "mrp/platform/memory/VirtualActivity.h"

#include <iostream>

struct Agent : Mrp::MrpLib {
   bool mrpJoinIndication( Mrp::MrpParameters const & join ) override {
      std::cout << join.intfId() << ": VLAN " << mvrpVlanVectorRx().vlanId() << " registered\n";
      return false; // true would refuse it
   }
};

int main() {
   Memory::VirtualActivity activity;
   Memory::Host host;
   Pelk::IntfId const port( "Ethernet1" );
   host.interfaceIs( port, Pelk::EthAddr( "02:00:00:00:00:01" ), 1500 );

   Korv::Ptr< Agent > const agent( new Agent );
   agent->applicationIs( Mrp::MVRP );
   agent->applicationMacAddrIs( Pelk::EthAddr( "01:80:c2:00:00:21" ) );
   agent->applicationEtypeIs( 0x88f5 );
   auto const participant =
      Mrp::mrpSmFactory( host.brConfig(), agent.ptr(), Mrp::mrpConfigFactory( "config" ),
                         Mrp::mrpStatusFactory( "status" ), host.stpStatus(), host.brTopoConfig(),
                         host.ethPhyIntfStatusDir(), host.em(), false );
   agent->mrpInterfaceEnable( port );

   // To the group address, from the neighbour: one vector of one value, 100, with a New.
   Memory::Frame const frame{ 0x01, 0x80, 0xc2, 0, 0, 0x21, 0x02, 0,   0, 0, 0, 9, 0x88,
                              0xf5, 0,    1,    2, 0, 1,    0,    100, 0, 0, 0, 0, 0 };
   host.device( port )->deliver( frame );
   activity.advanceTo( 1.0 );
}
