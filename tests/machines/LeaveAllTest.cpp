// When this participant asks everyone to declare again, and what it takes to be asked itself.
#include "tests/machines/MachinesTest.h"

#include <cmath>

namespace TestSupport {
namespace {

using namespace Mrp;
using testing::ElementsAre;

// To the second: "10 20".
std::string leaveAllTimes( Participant const & participant ) {
   std::string times;
   for ( SentFrame const & frame : participant.sent() ) {
      if ( says( frame.bytes ).find( "LeaveAll" ) != std::string::npos ) {
         EXPECT_NEAR( frame.time, std::round( frame.time ), 0.11 );
         times += ( times.empty() ? "" : " " ) + std::to_string( std::lround( frame.time ) );
      }
   }
   return times;
}

double published( Participant & mvrp ) {
   return mvrp.status().application( MVRP )->leaveAllTime( MrpLeaveAllKey( id( et1 ), vlanType ) );
}

// Changes at 6 of a period of 10.
TEST( LeaveAll, startsItsPeriodAnew ) {
   auto const configured = []( double time ) {
      return [time]( Participant & p ) { p.config().leaveAllTimeIs( time ); };
   };
   auto const overridden = []( std::string const & interface ) {
      return [=]( Participant & p ) { p.config().intfLeaveAllTimeIs( id( interface ), 18 ); };
   };
   auto const switched = []( Participant & p ) { p.config().timersEnabledIs( false ); };
   auto const received = []( Participant & p ) { p.receive( et1, mvrpFrame( vlanLeaveAll() ) ); };
   auto const outOfTurn = []( Participant & p ) {
      p.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
   };
   struct Row {
      char const * what;
      std::function< void( Participant & ) > change;
      char const * times; // up to 31
      double published;
   };
   for ( Row const & row : { Row{ "nothing", configured( 10 ), "10 20 30", 10 },
                             { "a longer time", configured( 18 ), "24", 18 },
                             { "a shorter one", configured( 8 ), "14 22 30", 8 },
                             { "the interface's", overridden( et1 ), "24", 18 },
                             { "another interface's", overridden( "Ethernet2" ), "10 20 30", 10 },
                             { "a switch that switches nothing", switched, "10 20 30", 10 },
                             { "one received", received, "16 26", 10 },
                             { "one out of turn", outOfTurn, "6 16 26", 10 } } ) {
      SCOPED_TRACE( row.what );
      Participant mvrp( MVRP );
      mvrp.advanceTo( 6 );
      row.change( mvrp );
      mvrp.advanceTo( 31 );
      EXPECT_EQ( leaveAllTimes( mvrp ), row.times );
      EXPECT_EQ( published( mvrp ), row.published );
   }
}

TEST( LeaveAll, hasATimeForEachType ) {
   Participant msrp( MSRP );
   msrp.advanceTo( 6 );
   msrp.receive( et1, msrpFrame( msrpLeaveAll( domainType ) ) );
   msrp.advanceTo( 31 );
   EXPECT_EQ( leaveAllTimes( msrp ), "10 16 20 26 30" );
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
      EXPECT_EQ( leaveAllTimes( mvrp ), ahead < 0.1 ? "5" : "" );
      mvrp.advanceTo( 6 );
      EXPECT_EQ( mvrp.sent().size(), 1u );
   }
}

// What is marked for deletion is not there for a LeaveAll of our own, posted or out of turn.
TEST( LeaveAll, passesOverWhatIsMarkedForDeletion ) {
   Participant mvrp( MVRP );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
   mvrp.advanceTo( 1 );
   mvrp.lib().mrpCleanUpIntfDatabaseAttribute( id( et1 ), vlanType, 10 );
   post( mvrp, txLvAll, regTxLvAll );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{11 In; LeaveAll 11 Mt}" ) );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
}

TEST( LeaveAll, endsWithItsInterface ) {
   Participant mvrp( MVRP, { et1, "Ethernet2" } );
   mvrp.lib().mrpInterfaceDisable( id( et1 ) );
   EXPECT_EQ( published( mvrp ), 0 );
   EXPECT_FALSE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( id( et1 ) ) );
   mvrp.advanceTo( 11 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet2: vlan{LeaveAll}" ) );
}

} // namespace
} // namespace TestSupport
