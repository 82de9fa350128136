// What the agent publishes of bridge and spanning tree.
#include "mrp/platform/stp/Stp.h"

#include "mrp/platform/korv/RangeException.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>
#include <string>

namespace Stp {
namespace {

using Role = MstiPortStatus::Role;

class StpTest : public testing::Test {
 protected:
   struct Watcher : Status::Reactor {
      explicit Watcher( StpTest & t ) : test( t ) {}
      void onStpiStatus( Name const & name ) override { test.hear( "stpi", name ); }
      void onStpMode() override { test.hear( "mode", "" ); }
      StpTest & test;
   };
   struct StpiWatcher : StpiStatus::Reactor {
      explicit StpiWatcher( StpTest & t ) : test( t ) {}
      void onMstiStatus( Name const & name ) override { test.hear( "msti", name ); }
      StpTest & test;
   };
   struct MstiWatcher : MstiStatus::Reactor {
      explicit MstiWatcher( StpTest & t ) : test( t ) {}
      void onMstiPortStatus( Name const & name ) override { test.hear( "port", name ); }
      StpTest & test;
   };
   struct PortWatcher : MstiPortStatus::Reactor {
      explicit PortWatcher( StpTest & t ) : test( t ) {}
      void onRole() override { test.hear( "role", "" ); }
      StpTest & test;
   };

   void hear( char const * what, Name const & name ) { heard += what + name.stringValue() + " "; }
   std::string taken() { return std::exchange( heard, {} ); }

   Korv::Ptr< Status > status = new Status( "stp" );
   Watcher watcher{ *this };
   StpiWatcher stpiWatcher{ *this };
   MstiWatcher mstiWatcher{ *this };
   PortWatcher portWatcher{ *this };
   std::string heard;
};

TEST_F( StpTest, eachLevelTellsOfItsRecordsOnceAsTheyComeAndGo ) {
   watcher.notifierIs( status.ptr() );
   auto * const stpi = status->stpiStatusIs( "default" );
   stpiWatcher.notifierIs( stpi );
   auto * const msti = stpi->mstiStatusIs( "Cist" );
   mstiWatcher.notifierIs( msti );
   auto * const port = msti->mstiPortStatusIs( "et1", Role::root );
   portWatcher.notifierIs( port );
   EXPECT_EQ( taken(), "stpidefault mstiCist portet1 " ); // the role came with its record
   EXPECT_EQ( port->role(), Role::root );
   EXPECT_EQ( port->fullName(), "stp/stpiStatus/default/mstiStatus/Cist/mstiPortStatus/et1" );

   EXPECT_EQ( status->stpiStatusIs( "default" ), stpi );
   EXPECT_EQ( stpi->mstiStatusIs( "Cist" ), msti );
   EXPECT_EQ( msti->mstiPortStatusIs( "et1", Role::root ), port );
   EXPECT_EQ( taken(), "" );
   msti->mstiPortStatusIs( "et1", Role::alternate );
   EXPECT_EQ( taken(), "role " );

   Korv::Ptr< MstiPortStatus > const kept = port;
   msti->mstiPortStatusDel( "et1" );
   msti->mstiPortStatusDel( "et1" );
   EXPECT_EQ( msti->mstiPortStatus( "et1" ), nullptr );
   EXPECT_EQ( kept->parent(), nullptr );
   stpi->mstiStatusDel( "Cist" );
   status->stpiStatusDel( "default" );
   EXPECT_EQ( taken(), "portet1 mstiCist stpidefault " );

   status->stpModeIs( 100 );
   status->stpModeIs( 100 );
   EXPECT_EQ( taken(), "mode " );
}

TEST( Role, hasTheNumbersThatTheProtocolGoesBy ) {
   for ( auto const & [number, name] : { std::pair( 0u, "unknown" ),
                                         { 1u, "root" },
                                         { 2u, "designated" },
                                         { 3u, "alternate" },
                                         { 9u, "9" } } ) {
      std::ostringstream out;
      out << static_cast< Role >( number );
      EXPECT_EQ( out.str(), name );
   }
}

} // namespace
} // namespace Stp

namespace Bridging {
namespace {

TEST( VlanId, isANumberOfItsRange ) {
   EXPECT_EQ( VlanId().value(), 0 );
   EXPECT_EQ( VlanId( 1 ).value(), 1 );
   EXPECT_EQ( VlanId( 4094 ).value(), 4094 );
   EXPECT_LT( VlanId( 7 ), VlanId( 8 ) );
   EXPECT_NE( VlanId( 7 ).hash(), VlanId( 8 ).hash() );
   for ( Korv::U16 const value : std::initializer_list< Korv::U16 >{ 0, 4095, 65535 } ) {
      try {
         VlanId const none( value );
         ADD_FAILURE() << value;
      } catch ( Korv::RangeException const & refusal ) {
         EXPECT_STREQ( refusal.what(), "VlanId::value < 1 or > 4094 not allowed" );
      }
   }
}

TEST( Config, holdsVlansAndSwitchInterfaces ) {
   Config config( "bridge" );
   EXPECT_EQ( config.vlanConfig( VlanId() ), nullptr );
   auto * const vlan = config.vlanConfigIs( VlanId( 7 ) );
   EXPECT_EQ( config.vlanConfigIs( VlanId( 7 ) ), vlan );
   EXPECT_EQ( Stp::pvstInstanceName( *vlan ), "Vl7" );
   config.vlanConfigDel( VlanId( 7 ) );
   EXPECT_EQ( config.vlanConfig( VlanId( 7 ) ), nullptr );

   Pelk::IntfId const intfId( "et1" );
   EXPECT_EQ( config.switchIntfConfig( intfId ), nullptr );
   config.switchIntfConfigIs( intfId )->nativeVlanIs( 5000 ); // no VLAN's number, and yet held
   EXPECT_EQ( config.switchIntfConfig( intfId )->nativeVlan(), 5000 );
   config.switchIntfConfigDel( intfId );
   EXPECT_EQ( config.switchIntfConfig( intfId ), nullptr );
}

} // namespace
} // namespace Bridging
