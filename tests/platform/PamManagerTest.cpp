// From a wish to packet access.
#include "mrp/platform/memory/Host.h"

#include "tests/platform/HostPams.h"

#include <gtest/gtest.h>

namespace Interface {
namespace {

class PamManagerTest : public testing::Test {
 protected:
   Pelk::IntfId const one{ "one" }, two{ "two" };
   Memory::Host host;
   Platform::HostPams pams{ host };
};

TEST_F( PamManagerTest, aPamComesAndGoesWithTheWishAndTheDevice ) {
   pams.manager->enabledIs( true );
   host.interfaceIs( one );
   EXPECT_EQ( pams.changes(), "" );
   pams.desired->intfDesiredIs( one, true );
   EXPECT_EQ( pams.changes(), "+one" );
   pams.desired->intfDesiredIs( one, true );
   pams.desired->intfDesiredIs( two, true );
   EXPECT_EQ( pams.changes(), "" );
   host.interfaceIs( two );
   EXPECT_EQ( pams.changes(), "+two" );
   host.interfaceDel( two );
   host.interfaceIs( two );
   EXPECT_EQ( pams.changes(), "-two+two" );
   EXPECT_EQ( pams.collection->intfPam( two ), host.pam( two ) );
   pams.desired->intfDesiredDel( two );
   pams.desired->intfDesiredDel( two );
   pams.desired->intfDesiredIs( one, false );
   EXPECT_EQ( pams.changes(), "-two-one" );
   EXPECT_EQ( host.pam( one ), nullptr ); // closed, too
}

TEST_F( PamManagerTest, nothingIsOpenUnlessItIsEnabled ) {
   host.interfaceIs( one );
   host.interfaceIs( two );
   pams.desired->intfDesiredIs( two, true );
   pams.desired->intfDesiredIs( one, true );
   EXPECT_EQ( pams.changes(), "" );
   pams.manager->destinationIs( Pelk::EthAddr( "01:80:c2:00:00:21" ) );
   pams.manager->rxQueueFramesIs( 2 );
   pams.manager->enabledIs( true );
   EXPECT_EQ( pams.changes(), "+two+one" ); // in the order of the wishes
   auto const & settings = host.pam( one )->settings();
   EXPECT_EQ( settings.destination, Pelk::EthAddr( "01:80:c2:00:00:21" ) );
   EXPECT_EQ( settings.rxQueueFrames, 2u );
   pams.manager->enabledIs( true );
   EXPECT_EQ( pams.changes(), "" );
   pams.manager->enabledIs( false );
   EXPECT_EQ( pams.changes(), "-two-one" );
}

} // namespace
} // namespace Interface
