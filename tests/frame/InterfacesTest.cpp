// How a participant comes to its interfaces, which frames the filter lets through, and what happens
// when an interface or its packet access comes in the middle of something. Standby and its end, and
// interfaces that come and go, are told by the scenarios.
#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";
Pelk::IntfId const ethernet1( et1 );

TEST( Interfaces, thatWereThereFirstAreTakenUp ) {
   Participant mvrp( Mrp::MVRP );
   auto const another =
      Korv::newValidPtr< Mrp::MrpPamSm >( mvrp.sm().pamCollection(), true, &mvrp.sm() );
   EXPECT_TRUE( another->mrpIntfPamSm( ethernet1 ) );
}

TEST( Interfaces, haveTheirFramesTriedAgainAndALongQueue ) {
   Participant mvrp( Mrp::MVRP );
   auto const & settings = mvrp.host().pam( ethernet1 )->settings();
   EXPECT_EQ( settings.txRetries, 3u );
   EXPECT_EQ( settings.rxQueueFrames, 10000u );
}

// Frames that waited through standby are no notification; another packet access is looked at once.
TEST( Interfaces, readAFrameWhenTheirPacketAccessComes ) {
   Participant mvrp( Mrp::MVRP, { et1 }, { .standby = true } );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   mvrp.sm().standbyModeIs( false );
   mvrp.sm().handleStandbyMode();
   mvrp.advanceTo( 2 );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   auto const machine = mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 );
   Korv::Ptr< Pelk::Pam > const pam = machine->pam();
   machine->pamIs( nullptr );
   machine->pamIs( pam );
   EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1" ) );
}

// The machine that ends has closed before its successor opens, also in the middle of its work.
TEST( Interfaces, openedAnewOverALeavingFrameHaveTheirLeaveAll ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.declare( et1, Vlan{ 10 }, New );
   bool reopened = false;
   mvrp.host().onTransmit( [&]( Pelk::IntfId const &, Memory::FrameBytes ) {
      if ( !std::exchange( reopened, true ) ) {
         mvrp.lib().mrpInterfaceDisable( ethernet1 );
         mvrp.lib().mrpInterfaceEnable( ethernet1 );
      }
   } );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   EXPECT_TRUE( reopened );
   EXPECT_TRUE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 ) );
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

// A subclass that overrides a mutator sees the value each time that it is written, and so when a
// LeaveAll of our own loads it from the database.
TEST( Fields, areWrittenThroughTheirVirtualMutators ) {
   Participant msrp( Mrp::MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   msrp.advanceTo( 1 );
   unsigned const before = msrp.lib().domainTxWrites;
   msrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   EXPECT_EQ( msrp.lib().domainTxWrites, before + 1 );
   EXPECT_EQ( hex( msrp.lib().rxValue( domainType ) ), "06 03 00 02" );
}

} // namespace
} // namespace TestSupport
