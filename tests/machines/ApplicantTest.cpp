// The applicant: what it says for each event in each state, in which of the interface's two
// frames, and where it goes.
#include "tests/machines/MachinesTest.h"

#include <algorithm>
#include <regex>

namespace TestSupport {
namespace {

using namespace Mrp;

// The states by the standard's short names.
constexpr auto VO = mrpVeryAnxiousObserver, VP = mrpVeryAnxiousPassive, VN = mrpVeryAnxiousNew;
constexpr auto AN = mrpAnxiousNew, AA = mrpAnxiousActive, QA = mrpQuietActive;
constexpr auto LA = mrpLeavingActive, AO = mrpAnxiousObserver, QO = mrpQuietObserver;
constexpr auto AP = mrpAnxiousPassive, QP = mrpQuietPassive, LO = mrpLeavingObserver;

template < class T >
bool holds( std::vector< T > const & all, T one ) {
   return std::count( all.begin(), all.end(), one ) != 0;
}

// On these events these states say this, "|" between the first frame and the second, and go there.
// Whatever is not told here says nothing and stays. Unless it is registered, it says Mt for In.
struct Rule {
   std::vector< MrpApplicantEvent > events;
   std::vector< MrpApplicantState > states;
   std::string says;
   MrpApplicantState next;
};
std::vector< Rule > const rules{
   // A new declaration goes out twice, from wherever the machine stands.
   { { appNew }, { VO, AO, QO, QP, QA, VP, AA, LA, AP, LO }, "New|New", QA },
   // A join goes out the more often, the less of it others have said.
   { { appJoin }, { VO, QA, LO }, "JoinIn|JoinIn", QA },
   { { appJoin }, { AO, LA }, "JoinIn", QA },
   { { appJoin }, { QO }, "", QP },
   // Only who has declared says that it leaves.
   { { appLv }, { QA, VN, AN, AA }, "Lv", VO },
   { { appLv }, { VP }, "", VO },
   { { appLv }, { AP }, "", AO },
   { { appLv }, { QP }, "", QO },
   // Someone may be about to forget: declare again, or report what is registered.
   { { appRedeclare, rxLv, rxLvAll }, { VO, AO, QO }, "In", VO },
   { { appRedeclare, rxLv, rxLvAll }, { QP, QA, AA, AP }, "JoinIn|JoinIn", QA },
   { { appRedeclare, rxLv, rxLvAll }, { AN }, "New|New", QA },
   // Our own LeaveAll asks the same of us, once.
   { { txLvAll }, { VO, AO, QO, LA }, "In", VO },
   { { txLvAll }, { QP, QA, AP }, "JoinIn", QA },
   { { txLvAll }, { VP }, "In|JoinIn", QA },
   { { txLvAll }, { VN }, "New|New", QA },
   { { txLvAll }, { AN }, "New", QA },
   // Others who declare make it quiet.
   { { rxJoinIn }, { VO }, "", AO },
   { { rxJoinIn }, { AO }, "", QO },
   { { rxJoinIn }, { AP }, "", QP },
   { { rxJoinIn }, { VP }, "JoinIn", QA },
   { { rxJoinIn, rxIn }, { AA }, "", QA },
   // Others who miss a declaration make it speak.
   { { rxJoinMt, rxMt }, { QO }, "", AO },
   { { rxJoinMt, rxMt }, { QP, QA }, "JoinIn", QA },
   { { rxJoinMt, rxMt }, { LO }, "", VO } };

constexpr U16 vlan = 10;

// How each event comes about.
struct Door {
   MrpApplicantEvent event;
   std::function< void( Participant & ) > open;
};
Door receives( MrpApplicantEvent event, Vector const & vector ) {
   return { event, [=]( Participant & mvrp ) { mvrp.receive( et1, mvrpFrame( vector ) ); } };
}
Door receives( MrpApplicantEvent event, Event said ) {
   return receives( event, vlans( vlan, { said } ) );
}
Door declares( MrpApplicantEvent event, Event declared ) {
   return { event, [=]( Participant & mvrp ) { mvrp.declare( et1, Vlan{ vlan }, declared ); } };
}
Door posts( MrpApplicantEvent event ) {
   return { event, [=]( Participant & mvrp ) { post( mvrp, event, invalidRegistrarEvent ); } };
}
void sendLeaveAll( Participant & mvrp ) { mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) ); }
std::vector< Door > const doors{ declares( appNew, New ),
                                 declares( appJoin, JoinIn ),
                                 declares( appJoin, JoinMt ),
                                 declares( appLv, Lv ),
                                 posts( appRedeclare ),
                                 posts( appFlush ),
                                 receives( rxNew, New ),
                                 receives( rxJoinIn, JoinIn ),
                                 receives( rxIn, In ),
                                 receives( rxJoinMt, JoinMt ),
                                 receives( rxMt, Mt ),
                                 receives( rxLv, Lv ),
                                 receives( rxLvAll, vlanLeaveAll() ),
                                 { txLvAll, sendLeaveAll } };

// What all frames say of the VLAN; one in the second context alone would not leave.
std::string saidOfIt( Participant const & mvrp ) {
   std::string all;
   for ( SentFrame const & frame : mvrp.sent() ) {
      std::string in;
      for ( Declared const & value : decode( frame.bytes ).values() ) {
         in += ( in.empty() ? "" : " " ) + std::string( name( value.event ) );
      }
      all += ( all.empty() || in.empty() ? "" : "|" ) + in;
   }
   return all;
}

void expectRules( MrpRegistrarState registrar, MrpApplicantState from, Door const & door ) {
   Rule expected{ {}, {}, "", from };
   for ( Rule const & rule : rules ) {
      if ( holds( rule.events, door.event ) && holds( rule.states, from ) ) {
         expected = rule;
      }
   }
   Participant mvrp( MVRP );
   mvrp.advanceTo( 0.05 );
   mvrp.attributeIs( et1, vlanType, vlan, stored( Vlan{ vlan } ), from, registrar );
   door.open( mvrp );
   // A LeaveAll received withdraws what others have declared.
   bool const registered = registrar == mrpIn && door.event != rxLvAll;
   auto const after = mvrp.attribute( et1, vlan );
   mvrp.advanceBy( 0.2 );
   EXPECT_EQ( saidOfIt( mvrp ),
              std::regex_replace( expected.says, std::regex( "In" ), registered ? "In" : "Mt" ) );
   // Nothing declared and nothing registered is nothing to keep. Joins register, and a LeaveAll
   // sent out of turn tells the registrar nothing.
   bool const kept = registrar != mrpMt || expected.next != VO ||
                     holds( { rxNew, rxJoinIn, rxJoinMt, txLvAll }, door.event );
   ASSERT_EQ( after.has_value(), kept );
   if ( kept ) {
      EXPECT_EQ( stringValue( after->applicant ), stringValue( expected.next ) );
   }
}

TEST( Applicant, saysAndGoesWhereItsStateAndTheEventTell ) {
   for ( auto const registrar : { mrpIn, mrpLv, mrpMt } ) {
      for ( auto const from : { VO, VP, VN, AN, AA, QA, LA, AO, QO, AP, QP, LO } ) {
         for ( Door const & door : doors ) {
            SCOPED_TRACE( stringValue( registrar ) + ' ' + stringValue( from ) + " on " +
                          stringValue( door.event ) );
            expectRules( registrar, from, door );
         }
      }
   }
}

// It makes what it does not know; only a join keeps it.
TEST( Applicant, keepsAnUnknownAttributeForAJoinAlone ) {
   for ( Event const event : { New, JoinIn, JoinMt, In, Mt, Lv } ) {
      SCOPED_TRACE( name( event ) );
      Participant mvrp( MVRP );
      mvrp.receive( et1, mvrpFrame( vlans( vlan, { event } ) ) );
      bool const isJoin = event == New || event == JoinIn || event == JoinMt;
      EXPECT_EQ( mvrp.states( et1, vlan ), event == JoinIn ? "mrpAnxiousObserver mrpIn"
                                           : isJoin        ? "mrpVeryAnxiousObserver mrpIn"
                                                           : "none" );
      EXPECT_EQ( mvrp.sm().mrpAttrIter( { id( et1 ), vlanType } ) != nullptr, isJoin );
   }
}

} // namespace
} // namespace TestSupport
