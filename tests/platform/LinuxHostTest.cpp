// The entities that follow the kernel.
#include "mrp/platform/linux/Host.h"

#include "tests/platform/LinuxScene.h"

#include <optional>

namespace Linux {
namespace {

Pelk::IntfId const va( "va" );

// "designated", or "none" for a port without a record.
std::string roleAt( Host & of ) {
   auto const * const tree = of.stpStatus()->stpiStatus( "Stp" )->mstiStatus( "Cist" );
   auto const * const port = tree->mstiPortStatus( "va" );
   return port ? Korv::stringValue( port->role() ) : "none";
}

class LinuxHost : public Scene {
 protected:
   void SetUp() override {
      Scene::SetUp();
      if ( !IsSkipped() ) {
         host.emplace( activity );
      }
   }
   Korv::U32 mtu() const {
      auto const * const status = host->allIntfStatusDir()->intfStatus( va );
      return status ? status->mtu() : 0;
   }
   bool up() const { return host->allIntfStatusDir()->intfStatus( va )->up(); }

   std::optional< Host > host;
};

TEST_F( LinuxHost, theDirectoriesAreAsTheKernelSays ) {
   run( "ip link set va address 02:00:00:00:00:0a mtu 1400" );
   EXPECT_EQ( mtu(), 0u ); // not followed
   host->interfaceIs( va );
   EXPECT_EQ( mtu(), 1400u ); // at once, with what has changed since the host was made
   auto const * const port = host->ethPhyIntfStatusDir()->intfStatus( va );
   ASSERT_TRUE( port );
   EXPECT_EQ( port->addr(), Pelk::EthAddr( "02:00:00:00:00:0a" ) );
   EXPECT_FALSE( host->network()->hasDevice( Pelk::IntfId( "vb" ) ) );

   run( "ip link set va address 02:00:00:00:00:0b mtu 1300" );
   ASSERT_TRUE( runUntil( [&] { return mtu() == 1300 && up(); } ) );
   EXPECT_EQ( port->addr(), Pelk::EthAddr( "02:00:00:00:00:0b" ) );
   run( "ip link set vb down" ); // no partner any more
   EXPECT_TRUE( runUntil( [&] { return !up(); } ) );
   EXPECT_TRUE( host->network()->hasDevice( va ) );

   // Renamed away, and back: gone, and come.
   run( "ip link set va down && ip link set va name vc" );
   ASSERT_TRUE( runUntil( [&] { return !host->network()->hasDevice( va ); } ) );
   EXPECT_EQ( mtu(), 0u );
   EXPECT_FALSE( host->ethPhyIntfStatusDir()->intfStatus( va ) );
   run( "ip link set vc name va" );
   EXPECT_TRUE( runUntil( [&] { return host->network()->hasDevice( va ); } ) );
   EXPECT_EQ( mtu(), 1300u );
   host->interfaceDel( va );
   EXPECT_EQ( mtu(), 0u );
}

TEST_F( LinuxHost, announcementsThatWereLostAreMadeUpFor ) {
   host->interfaceIs( va );
   struct Changes : Interface::IntfStatus::Reactor {
      void onMtu() override { ++heard; }
      int heard = 0;
   } changes;
   changes.notifierIs( host->allIntfStatusDir()->intfStatus( va ) );
   run( "for i in $(seq 4000); do echo link set dev va mtu $((1000 + i % 400)); done | "
        "ip -batch - && ip link set va mtu 777" );
   ASSERT_TRUE( runUntil( [&] { return mtu() == 777; } ) );
   EXPECT_LT( changes.heard, 4'000 ); // some were indeed lost
   run( "ip link set va mtu 778" );
   EXPECT_TRUE( runUntil( [&] { return mtu() == 778; } ) );
}

TEST_F( LinuxHost, rolesFollowThePortsOfBridges ) {
   host->interfaceIs( va );
   EXPECT_EQ( roleAt( *host ), "none" );
   run( "ip link add name br0 type bridge && ip link set br0 up" );
   std::pair< char const *, char const * > const table[] = {
      { "va master br0", "designated" },
      { "va type bridge_slave state 2", "alternate" }, // learning
      { "va type bridge_slave state 3", "designated" },
      { "vb down", "alternate" },
      { "va nomaster", "none" },
      { "va master br0 && ip link set vb up", "designated" },
   };
   for ( auto const & [change, role] : table ) {
      run( std::string( "ip link set " ) + change );
      EXPECT_TRUE( runUntil( [&, role = role] { return roleAt( *host ) == role; } ) ) << change;
      EXPECT_TRUE( host->network()->hasDevice( va ) );
   }

   Host late( activity ); // learns of the port from its dump
   late.interfaceIs( va );
   EXPECT_EQ( roleAt( late ), "designated" );
   // Whoever opens the port is told of its role: the record goes, and comes.
   struct Told : Stp::MstiStatus::Reactor {
      void onMstiPortStatus( Korv::Name const & ) override { ++times; }
      int times = 0;
   } told;
   told.notifierIs( late.stpStatus()->stpiStatus( "Stp" )->mstiStatus( "Cist" ) );
   auto const pam = late.network()->newPam( va, mvrpSettings() );
   EXPECT_TRUE( runUntil( [&] { return told.times == 2; } ) );
   run( "ip link del va" );
   EXPECT_TRUE( runUntil( [&] { return roleAt( *host ) == "none"; } ) );
}

} // namespace
} // namespace Linux
