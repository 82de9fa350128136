// A participant in standby and its end, interfaces that come and go, and the fields through which
// an application sees each value.
#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";
std::string const et2 = "Ethernet2";
Pelk::IntfId const ethernet1( et1 );
Pelk::IntfId const ethernet2( et2 );

void end( Participant & participant ) {
   participant.sm().standbyModeIs( false );
   participant.sm().handleStandbyMode();
}

std::vector< U64 > indexed( Participant & participant, Pelk::IntfId intfId, U8 type ) {
   std::vector< U64 > keys;
   if ( auto const * const iter = participant.sm().mrpAttrIter( { intfId, type } ) ) {
      for ( auto member = iter->attributeKey().walk(); member; ++member ) {
         keys.push_back( member.key() );
      }
   }
   return keys;
}

TEST( Standby, hasPacketAccessAndNothingElse ) {
   Participant::Options options;
   options.standby = true;
   Participant msrp( Mrp::MSRP, { et1, et2 }, options );
   EXPECT_TRUE( msrp.sm().pam( ethernet1 ) );
   EXPECT_TRUE( msrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet2 ) );
   EXPECT_FALSE( msrp.sm().parseContext() );
   EXPECT_FALSE( msrp.sm().mrpCounters() );
   EXPECT_FALSE( msrp.sm().registrarSm() );
   EXPECT_FALSE( msrp.sm().leaveAllSm() );
   EXPECT_FALSE( msrp.sm().mrpDatabaseAddSm() );
   EXPECT_EQ( msrp.sm().maxAttrTypes(), 0 );
   EXPECT_TRUE( msrp.receive( et1, msrpFrame( talkers( 0x100, { JoinIn } ) ) ) );
   msrp.advanceTo( 30 );
   EXPECT_THAT( msrp.indications(), IsEmpty() );
   EXPECT_THAT( msrp.said(), IsEmpty() );
   EXPECT_TRUE( msrp.host().pam( ethernet1 )->hasDataOnSocket() );
}

// As left in the tree by whoever was active before.
TEST( Standby, endsWithWhatTheTreeHoldsAndCountersAtZero ) {
   Participant::Options options;
   options.standby = true;
   Participant msrp( Mrp::MSRP, { et1, et2 }, options );
   auto * const database = msrp.status().application( Mrp::MSRP );
   struct Known {
      Pelk::IntfId intfId;
      U8 type;
      std::vector< U64 > keys;
      Bytes value = {};
   };
   std::vector< Known > const known{
      { ethernet1, talkerType, { 0x100, 0x200 } },
      { ethernet1, domainType, { 6 } },
      { ethernet2, listenerType, { 0x100 }, stored( Listener{ 0x100 } ) } };
   for ( Known const & each : known ) {
      auto * const type = database->attrDatabaseIs( each.intfId )->intfTypeApplicantIs( each.type );
      for ( U64 const key : each.keys ) {
         auto * const attribute = type->mrpAttributeIs( key );
         attribute->applicantStateIs( Mrp::mrpAnxiousObserver );
         attribute->registrarStateIs( Mrp::mrpIn );
         for ( U8 const byte : each.value ) {
            attribute->attributeValueEnq( byte );
         }
      }
      EXPECT_THAT( indexed( msrp, each.intfId, each.type ), IsEmpty() );
   }
   msrp.advanceTo( 5 );
   end( msrp );
   for ( Known const & each : known ) {
      EXPECT_THAT( indexed( msrp, each.intfId, each.type ), ElementsAreArray( each.keys ) );
   }
   EXPECT_EQ( msrp.sm().mrpAttrIter().size(), known.size() );
   EXPECT_EQ( msrp.sm().maxAttrTypes(), 4 );
   Korv::forEachScalar( msrp.counters(), []( char const * counter, U64 value ) {
      EXPECT_EQ( value, 0u ) << counter;
   } );
   for ( Pelk::IntfId const intfId : { ethernet1, ethernet2 } ) {
      EXPECT_FALSE( msrp.sm().mrpPamSm()->mrpIntfPamSm( intfId )->standbyMode() );
      EXPECT_TRUE( msrp.sm().leaveAllSm()->intfLeaveAllSm( intfId ) );
   }
   // The period starts now. What was known is asked for, and then forgotten.
   msrp.advanceTo( 14.8 );
   EXPECT_THAT( msrp.said(), IsEmpty() );
   msrp.advanceTo( 15.2 );
   ASSERT_EQ( msrp.said().size(), 2u );
   EXPECT_THAT( msrp.said()[1], testing::HasSubstr( "listener{LeaveAll 0x100 In Ready}" ) );
   msrp.advanceTo( 17 );
   EXPECT_EQ( msrp.counters().numOfLeaveIndications(), 4u );
   EXPECT_TRUE( msrp.sm().mrpAttrIter().empty() );
}

TEST( Standby, closesAnInterfaceWithoutALeaveAllMachine ) {
   Participant::Options options;
   options.standby = true;
   Participant mvrp( Mrp::MVRP, { et1 }, options );
   mvrp.sm().desiredIntfDir()->intfDesiredDel( ethernet1 );
   EXPECT_FALSE( mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
   end( mvrp ); // with no interfaces there is nothing to switch
   mvrp.advanceTo( 11 );
   EXPECT_THAT( mvrp.said(), IsEmpty() );
   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn } ) ) );
   EXPECT_EQ( mvrp.states( et1, 10 ), "mrpAnxiousObserver mrpIn" );
}

TEST( Interfaces, comeAndGo ) {
   Participant::Options options;
   options.enabled = false;
   Participant mvrp( Mrp::MVRP, { et1, et2 }, options );
   Bytes const join = mvrpFrame( vlans( 10, { JoinIn } ) );
   EXPECT_FALSE( mvrp.receive( et1, join ) );
   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   mvrp.lib().mrpInterfaceEnable( ethernet2 );
   mvrp.receive( et1, join );
   mvrp.receive( et2, join );
   mvrp.advanceTo( 1 );
   mvrp.declare( et1, Vlan{ 20 }, New );
   mvrp.clear();
   auto const * const machine = mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 );
   mvrp.lib().mrpInterfaceEnable( ethernet1 ); // again: nothing
   EXPECT_EQ( mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ), machine );

   // What stood in the frames still leaves; the application is not told.
   mvrp.lib().mrpInterfaceDisable( ethernet1 );
   EXPECT_THAT( mvrp.said(), ElementsAre( "Ethernet1: vlan{20 New}", "Ethernet1: vlan{20 New}" ) );
   EXPECT_THAT( mvrp.indications(), IsEmpty() );
   EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   EXPECT_EQ( mvrp.states( et2, 10 ), "mrpAnxiousObserver mrpIn" );
   EXPECT_FALSE( mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
   EXPECT_FALSE( mvrp.receive( et1, join ) );
   mvrp.lib().mrpInterfaceDisable( ethernet1 ); // again: nothing

   mvrp.lib().mrpInterfaceEnable( ethernet1 );
   EXPECT_TRUE( mvrp.sm().mrpPamSm()->mrpIntfPamSm( ethernet1 ) );
   mvrp.clear();
   mvrp.receive( et1, join );
   EXPECT_THAT( mvrp.indications(), ElementsAre( "join vlan 10 JoinIn on Ethernet1" ) );
}

// The machine that ends has closed before its successor opens, also in the middle of its work.
TEST( Interfaces, openedAnewOverALeavingFrameHaveTheirLeaveAll ) {
   class Reopen : public Mrp::MrpCounters::Reactor {
    public:
      explicit Reopen( Participant & mvrp ) : mvrp_( mvrp ) {
         notifierIs( mvrp.sm().mrpCounters().ptr() );
      }
      void onNumOfPktsTransmitted() override {
         notifierIs( nullptr );
         mvrp_.lib().mrpInterfaceDisable( ethernet1 );
         mvrp_.lib().mrpInterfaceEnable( ethernet1 );
      }

    private:
      Participant & mvrp_;
   };
   Participant mvrp( Mrp::MVRP, { et1 } );
   mvrp.declare( et1, Vlan{ 10 }, New );
   Reopen const reopen( mvrp );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   EXPECT_TRUE( mvrp.sm().leaveAllSm()->intfLeaveAllSm( ethernet1 ) );
}

// A subclass that overrides the mutators sees a value each time that it is written: declared,
// and loaded from the database for a LeaveAll of our own.
TEST( Fields, areWrittenThroughTheirVirtualMutators ) {
   Participant msrp( Mrp::MSRP );
   msrp.lib().countingMutators = true;
   msrp.declare( et1, talker( 0x100 ), New );
   msrp.declare( et1, FailedTalker{ talker( 0x200 ) }, New );
   msrp.declare( et1, Listener{ 0x300 }, New );
   msrp.declare( et1, Domain{ 6, 3, 2 }, New );
   std::string const names[] = { "msrpTalkerAdvertise", "msrpTalkerFailed", "msrpListenerVector",
                                 "msrpDomainVector" };
   for ( std::string const & name : names ) {
      EXPECT_THAT( msrp.lib().mutatorCalls, testing::Contains( name + "TxIs" ) );
      EXPECT_THAT( msrp.lib().mutatorCalls, testing::Not( testing::Contains( name + "RxIs" ) ) );
   }
   msrp.advanceTo( 1 );
   msrp.clear();
   msrp.sm().mrpPamSm()->transmitAllLeaveAll( ethernet1 );
   for ( std::string const & name : names ) {
      EXPECT_THAT( msrp.lib().mutatorCalls, testing::Contains( name + "TxIs" ) );
      EXPECT_THAT( msrp.lib().mutatorCalls, testing::Contains( name + "RxIs" ) );
   }
   EXPECT_EQ( hex( msrp.lib().rxValue( domainType ) ), "06 03 00 02" );
   EXPECT_EQ( hex( msrp.lib().rxValue( listenerType ) ), hex( stored( Listener{ 0x300 } ) ) );
}

} // namespace
} // namespace TestSupport
