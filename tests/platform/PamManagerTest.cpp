// From a wish to packet access.
#include "mrp/platform/memory/Host.h"

#include "tests/platform/HostPams.h"

#include <gtest/gtest.h>

namespace Interface {
namespace {

TEST( PamManager, aPamComesAndGoesWithTheWishAndTheDevice ) {
   Pelk::IntfId const one( "one" ), two( "two" );
   Memory::Host host;
   Platform::HostPams pams( host );
   host.interfaceIs( one );
   pams.desired->intfDesiredIs( one, true );
   EXPECT_EQ( pams.changes(), "" ); // not enabled
   pams.manager->rxQueueFramesIs( 2 );
   pams.manager->enabledIs( true );
   EXPECT_EQ( pams.changes(), "+one" );
   EXPECT_EQ( host.pam( one )->settings().rxQueueFrames, 2u );
   pams.desired->intfDesiredIs( one, true );
   pams.desired->intfDesiredIs( two, true );
   EXPECT_EQ( pams.changes(), "" );
   host.interfaceIs( two );
   EXPECT_EQ( pams.changes(), "+two" );
   host.interfaceDel( two );
   host.interfaceIs( two );
   EXPECT_EQ( pams.changes(), "-two+two" );
   EXPECT_EQ( pams.collection->intfPam( two ), host.pam( two ) );
   pams.desired->intfDesiredIs( one, false );
   EXPECT_EQ( pams.changes(), "-one" );
   EXPECT_EQ( host.pam( one ), nullptr ); // closed, too
   pams.desired->intfDesiredIs( one, true );
   pams.desired->intfDesiredDel( two );
   EXPECT_EQ( pams.changes(), "+one-two" );
   pams.manager->enabledIs( false );
   EXPECT_EQ( pams.changes(), "-one" );
}

} // namespace
} // namespace Interface
