// How a participant comes to its interfaces, which frames the filter lets through, and when they
// are read.
#include "mrp/frame/MrpPamSm.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;

std::string const et1 = "Ethernet1";
Pelk::IntfId const ethernet1( et1 );

TEST( PacketAccess, takesUpTheInterfacesThatWereThereFirst ) {
   Participant mvrp( Mrp::MVRP, { et1 }, { .standby = true } );
   auto const another =
      Korv::newValidPtr< Mrp::MrpPamSm >( mvrp.sm().pamCollection(), true, &mvrp.sm() );
   EXPECT_TRUE( another->mrpIntfPamSm( ethernet1 ) );
}

TEST( PacketAccess, hasItsFramesTriedAgainAndItsQueueLong ) {
   Participant mvrp( Mrp::MVRP, { et1 } );
   auto const & settings = mvrp.host().pam( ethernet1 )->settings();
   EXPECT_EQ( settings.txRetries, 3u );
   EXPECT_EQ( settings.rxQueueFrames, 10000u );
}

// The first participant of the process has filled in the program, whichever that was.
TEST( Filter, passesTheFramesOfTheFirstApplicationToAll ) {
   Memory::VirtualActivity activity;
   Participant mvrp( Mrp::MVRP, { et1 }, { .activity = &activity } );
   auto const & program = mvrp.host().pam( ethernet1 )->settings().filterProgram;
   ASSERT_EQ( program.length(), 11 );
   bool const mvrpWasFirst = program.address()[5].k == etherType( Protocol::mvrp );
   Participant msrp( Mrp::MSRP, { et1 }, { .activity = &activity } );
   U64 const group = groupAddress( mvrpWasFirst ? Protocol::mvrp : Protocol::msrp );
   U16 const own = etherType( mvrpWasFirst ? Protocol::mvrp : Protocol::msrp );
   U16 const other = etherType( mvrpWasFirst ? Protocol::msrp : Protocol::mvrp );

   auto const frame = [&] { return Frame( Protocol::mvrp, {} ).to( group ).type( own ); };
   for ( Participant * const each : { &mvrp, &msrp } ) {
      auto const passes = [&]( Bytes const & bytes ) {
         return each->host().device( ethernet1 )->deliver( bytes );
      };
      EXPECT_TRUE( passes( frame() ) );
      EXPECT_TRUE( passes( frame().tag( 7 ) ) );
      EXPECT_FALSE( passes( frame().type( other ) ) );
      EXPECT_FALSE( passes( frame().type( other ).tag( 7 ) ) );
      EXPECT_FALSE( passes( frame().tag( 7 ).tag( 8 ) ) );
      for ( unsigned bit = 0; bit < 48; ++bit ) {
         EXPECT_FALSE( passes( frame().to( group ^ U64{ 1 } << bit ) ) ) << bit;
      }
   }
   EXPECT_EQ( ( mvrpWasFirst ? mvrp : msrp ).counters().numOfPktsProcessed(), 2u );
}

// One frame a notification, the oldest first; what waited through standby is no notification.
TEST( PacketAccess, readsAFrameForEachThatArrives ) {
   Participant mvrp( Mrp::MVRP, { et1 }, { .standby = true } );
   auto const arrives = [&]( U16 vlan ) {
      mvrp.receive( et1, mvrpFrame( vlans( vlan, { JoinIn } ) ) );
   };
   arrives( 10 );
   arrives( 11 );
   mvrp.sm().standbyModeIs( false );
   mvrp.sm().handleStandbyMode();
   mvrp.advanceTo( 2 );
   EXPECT_THAT( mvrp.indications(), testing::IsEmpty() );
   arrives( 12 );
   EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1" ) );
   auto const machine = mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 );
   Korv::Ptr< Pelk::Pam > const pam = machine->pam();
   machine->pamIs( nullptr );
   machine->pamIs( pam ); // another one: it is looked at once
   machine->pamIs( pam );
   EXPECT_EQ( mvrp.indications().back(), "join vlan 11 JoinIn on Ethernet1" );
   EXPECT_EQ( mvrp.indications().size(), 2u );
}

} // namespace
} // namespace TestSupport
