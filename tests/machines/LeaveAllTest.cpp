// When this participant asks everyone to declare again, and what it takes to be asked itself.
#include "tests/machines/MachinesTest.h"

namespace TestSupport {
namespace {

using namespace Mrp;
using testing::ElementsAre;

std::vector< double > leaveAllTimes( Participant const & participant ) {
   std::vector< double > times;
   for ( SentFrame const & frame : participant.sent() ) {
      if ( says( frame.bytes ).find( "LeaveAll" ) != std::string::npos ) {
         times.push_back( frame.time );
      }
   }
   return times;
}

void expectTimes( Participant const & participant, std::vector< double > const & expected ) {
   auto const times = leaveAllTimes( participant );
   ASSERT_EQ( times.size(), expected.size() ) << testing::PrintToString( times );
   for ( std::size_t i = 0; i < times.size(); ++i ) {
      EXPECT_NEAR( times[i], expected[i], 0.11 );
   }
}

double published( Participant & participant, U8 type ) {
   return participant.status()
      .application( participant.protocol() == Protocol::msrp ? MSRP : MVRP )
      ->leaveAllTime( MrpLeaveAllKey( id( et1 ), type ) );
}

TEST( LeaveAll, goesOutForEachTypeOncePerPeriod ) {
   Participant msrp( MSRP );
   msrp.declare( et1, talker( 0x100 ), JoinIn );
   msrp.declare( et1, talker( 0x300 ), New );
   msrp.advanceTo( 1 );
   msrp.receive( et1, msrpFrame( domains( { 6, 3, 2 }, { JoinIn } ) ) );
   msrp.clear();
   msrp.advanceTo( 25 );
   expectTimes( msrp, { 10, 20 } );
   // The mark stands on the first vector of a type, or alone. The domain is declared by nobody
   // since, and so not even reported the second time.
   ASSERT_EQ( msrp.sent().size(), 2u );
   EXPECT_EQ( says( msrp.sent()[0].bytes ), "talker{LeaveAll 0x100 JoinMt; 0x300 JoinMt} "
                                            "failed{LeaveAll} listener{LeaveAll} "
                                            "domain{LeaveAll 6 In}" );
   EXPECT_EQ( says( msrp.sent()[1].bytes ), "talker{LeaveAll 0x100 JoinMt; 0x300 JoinMt} "
                                            "failed{LeaveAll} listener{LeaveAll} "
                                            "domain{LeaveAll}" );
   EXPECT_EQ( published( msrp, domainType ), 10 );
}

// Changes at 6 of a period of 10.
TEST( LeaveAll, startsItsPeriodAnew ) {
   struct Row {
      char const * what;
      void ( *change )( Participant & );
      std::vector< double > times; // up to 31
      double published;
   };
   for ( Row const & row :
         { Row{ "nothing", []( Participant & ) {}, { 10, 20, 30 }, 10 },
           { "a longer time",
             []( Participant & p ) { p.config().leaveAllTimeIs( 18 ); },
             { 24 },
             18 },
           { "a shorter one",
             []( Participant & p ) { p.config().leaveAllTimeIs( 8 ); },
             { 14, 22, 30 },
             8 },
           { "the interface's",
             []( Participant & p ) { p.config().intfLeaveAllTimeIs( id( et1 ), 18 ); },
             { 24 },
             18 },
           { "another interface's",
             []( Participant & p ) { p.config().intfLeaveAllTimeIs( id( "Ethernet2" ), 18 ); },
             { 10, 20, 30 },
             10 },
           { "the timers' switch, which switches nothing",
             []( Participant & p ) { p.config().timersEnabledIs( false ); },
             { 10, 20, 30 },
             10 },
           { "one received",
             []( Participant & p ) { p.receive( et1, mvrpFrame( vlanLeaveAll() ) ); },
             { 16, 26 },
             10 },
           { "one out of turn",
             []( Participant & p ) { p.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) ); },
             { 6, 16, 26 },
             10 } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( MVRP );
      mvrp.advanceTo( 6 );
      row.change( mvrp );
      mvrp.advanceTo( 31 );
      expectTimes( mvrp, row.times );
      EXPECT_EQ( published( mvrp, vlanType ), row.published );
   }
}

// One that is due within a tick goes along with the timer; a later one does not.
TEST( LeaveAll, sendsWhatIsDueAtOnce ) {
   for ( double const ahead : { 0.05, 0.3 } ) {
      SCOPED_TRACE( ahead );
      Participant mvrp( MVRP );
      mvrp.advanceTo( 5 );
      auto & machine = *mvrp.sm().leaveAllSm()->intfLeaveAllSm( id( et1 ) );
      machine.leaveAllPending( vlanType )->timestampIs( 5 + ahead );
      machine.handleLeaveAllTimer();
      EXPECT_EQ( leaveAllTimes( mvrp ).size(), ahead < 0.1 ? 1u : 0u );
      mvrp.advanceTo( 6 );
      EXPECT_EQ( leaveAllTimes( mvrp ).size(), 1u );
   }
}

// Sent out of turn it says the same as the periodic one, and starts no leave timer here.
TEST( LeaveAll, leavesRegistrationsAloneOutOfTurn ) {
   for ( bool const periodic : { false, true } ) {
      SCOPED_TRACE( periodic );
      Participant mvrp( MVRP );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
      mvrp.advanceTo( 9 );
      mvrp.clear();
      if ( periodic ) {
         mvrp.advanceTo( 10.15 );
      } else {
         mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
      }
      EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{LeaveAll 10 In}" ) );
      EXPECT_EQ( waitsOn( mvrp, 10 ), periodic ? "shared" : "" );
      mvrp.advanceBy( 2 );
      EXPECT_EQ( mvrp.states( et1, 10 ), periodic ? "none" : "mrpVeryAnxiousObserver mrpIn" );
   }
}

TEST( LeaveAll, passesOverWhatIsMarkedForDeletion ) {
   Participant mvrp( MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.advanceTo( 1 );
   mvrp.clear();
   mvrp.lib().mrpCleanUpIntfDatabaseAttribute( id( et1 ), vlanType, 10 );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{LeaveAll 11 In}" ) );
}

TEST( LeaveAll, endsWithItsInterface ) {
   Participant mvrp( MVRP, { et1, "Ethernet2" } );
   EXPECT_EQ( published( mvrp, vlanType ), 10 );
   mvrp.lib().mrpInterfaceDisable( id( et1 ) );
   EXPECT_EQ( published( mvrp, vlanType ), 0 );
   EXPECT_FALSE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( id( et1 ) ) );
   mvrp.advanceTo( 11 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet2: vlan{LeaveAll}" ) );
   mvrp.lib().mrpInterfaceEnable( id( et1 ) );
   mvrp.clear();
   mvrp.advanceTo( 21.5 );
   EXPECT_THAT( mvrp.said(),
                ElementsAre( "Ethernet2: vlan{LeaveAll}", "Ethernet1: vlan{LeaveAll}" ) );
}

} // namespace
} // namespace TestSupport
