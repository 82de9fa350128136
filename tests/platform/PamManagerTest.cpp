// From a wish to packet access: directories, status manager, manager and collection together, as a
// participant sets them up.
#include "mrp/platform/interface/EthDevPamManager.h"
#include "mrp/platform/interface/NetNsIntfStatusManagerRoot.h"
#include "mrp/platform/memory/Host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Interface {
namespace {

class PamManagerTest : public testing::Test {
 protected:
   struct Collected : EthDevPamCollection::Reactor {
      explicit Collected( PamManagerTest & t ) : test( t ) {}
      void onIntfPam( Pelk::IntfId const & intfId ) override {
         test.changes.push_back( ( test.has( intfId ) ? "+" : "-" ) + intfId.stringValue() );
      }
      PamManagerTest & test;
   };

   PamManagerTest() {
      collected.notifierIs( collection.ptr() );
      root->intfStatusManagerIs( nullptr, devices, host.network(), "default" );
   }
   bool has( Pelk::IntfId const & intfId ) const {
      return collection->intfPam( intfId ) != nullptr;
   }
   std::vector< std::string > taken() { return std::exchange( changes, {} ); }
   using Changes = std::vector< std::string >;

   Pelk::IntfId const one{ "one" }, two{ "two" };
   Memory::Host host;
   Korv::Ptr< DeviceIntfStatusDir > devices = new DeviceIntfStatusDir( "devices" );
   Korv::Ptr< PamDesiredIntfDir > desired = new PamDesiredIntfDir( "desired" );
   Korv::Ptr< EthDevPamCollection > collection = new EthDevPamCollection( "pams" );
   Korv::Ptr< NetNsIntfStatusManagerRoot > root =
      new NetNsIntfStatusManagerRoot( nullptr, host.allIntfStatusDir(), nullptr, false );
   Korv::Ptr< EthDevPamManager > manager = new EthDevPamManager( desired, collection, devices );
   Collected collected{ *this };
   Changes changes;
};

TEST_F( PamManagerTest, aPamComesAndGoesWithTheWish ) {
   manager->enabledIs( true );
   host.interfaceIs( one );
   EXPECT_EQ( taken(), Changes{} );

   desired->intfDesiredIs( one, true );
   EXPECT_EQ( taken(), Changes{ "+one" } );
   desired->intfDesiredIs( one, true );
   EXPECT_EQ( taken(), Changes{} );
   desired->intfDesiredDel( one );
   EXPECT_EQ( taken(), Changes{ "-one" } );
   desired->intfDesiredDel( one );

   desired->intfDesiredIs( one, true );
   desired->intfDesiredIs( one, false );
   EXPECT_EQ( taken(), ( Changes{ "+one", "-one" } ) );
   EXPECT_FALSE( desired->intfDesired( one ) );
   EXPECT_EQ( host.pam( one ), nullptr ); // closed, too
}

TEST_F( PamManagerTest, aPamComesAndGoesWithTheDevice ) {
   manager->enabledIs( true );
   desired->intfDesiredIs( two, true );
   desired->intfDesiredIs( one, true );
   EXPECT_EQ( taken(), Changes{} );
   host.interfaceIs( one );
   host.interfaceIs( two );
   host.interfaceIs( two );
   EXPECT_EQ( taken(), ( Changes{ "+one", "+two" } ) );
   Pelk::Pam const * const first = host.pam( one );
   EXPECT_EQ( collection->intfPam( one ), first );

   host.interfaceDel( one );
   EXPECT_EQ( taken(), Changes{ "-one" } );
   host.interfaceIs( one );
   EXPECT_EQ( taken(), Changes{ "+one" } );
   EXPECT_EQ( collection->intfPam( one ), host.pam( one ) );
}

TEST_F( PamManagerTest, nothingIsOpenUnlessItIsEnabled ) {
   host.interfaceIs( one );
   host.interfaceIs( two );
   desired->intfDesiredIs( two, true );
   desired->intfDesiredIs( one, true );
   EXPECT_EQ( taken(), Changes{} );
   manager->enabledIs( true );
   EXPECT_EQ( taken(), ( Changes{ "+two", "+one" } ) ); // in the order of the wishes
   manager->enabledIs( true );
   EXPECT_EQ( taken(), Changes{} );
   manager->enabledIs( false );
   EXPECT_EQ( taken(), ( Changes{ "-two", "-one" } ) );
}

TEST_F( PamManagerTest, opensWithTheSettings ) {
   static Pelk::SockFilterInstruction const none[] = { { 0x06, 0, 0, 0 } };
   manager->txRetriesIs( 3 );
   manager->rxQueueFramesIs( 2 );
   manager->destinationIs( Pelk::EthAddr( "01:80:c2:00:00:21" ) );
   manager->filterProgramIs( { 1, none } );
   manager->perIntfSocketIs( true );
   manager->enabledIs( true );
   host.interfaceIs( one );
   desired->intfDesiredIs( one, true );

   auto const & settings = host.pam( one )->settings();
   EXPECT_EQ( settings.txRetries, 3u );
   EXPECT_EQ( settings.rxQueueFrames, 2u );
   EXPECT_EQ( settings.destination, Pelk::EthAddr( "01:80:c2:00:00:21" ) );
   EXPECT_TRUE( settings.perIntfSocket );
   Memory::Frame const frame( 60, 1 );
   EXPECT_FALSE( host.device( one )->deliver( frame ) );
   EXPECT_TRUE( host.device( one )->deliverPastFilter( frame ) );
}

} // namespace
} // namespace Interface
