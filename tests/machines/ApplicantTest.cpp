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

// Brings the event about.
void happens( Participant & mvrp, MrpApplicantEvent event ) {
   auto const receives = [&]( Vector const & vector ) { mvrp.receive( et1, mvrpFrame( vector ) ); };
   switch ( event ) {
   case appNew: return mvrp.declare( et1, Vlan{ vlan }, New );
   case appJoin: return mvrp.declare( et1, Vlan{ vlan }, JoinIn );
   case appLv: return mvrp.declare( et1, Vlan{ vlan }, Lv );
   case rxNew: return receives( vlans( vlan, { New } ) );
   case rxJoinIn: return receives( vlans( vlan, { JoinIn } ) );
   case rxIn: return receives( vlans( vlan, { In } ) );
   case rxJoinMt: return receives( vlans( vlan, { JoinMt } ) );
   case rxMt: return receives( vlans( vlan, { Mt } ) );
   case rxLv: return receives( vlans( vlan, { Lv } ) );
   case rxLvAll: return receives( vlanLeaveAll() );
   case txLvAll: return mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
   default: post( mvrp, event, invalidRegistrarEvent );
   }
}

// What all frames say of the VLAN; one in the second context alone would not leave.
std::string saidOfIt( Participant const & mvrp ) {
   std::string all;
   for ( SentFrame const & frame : mvrp.sent() ) {
      std::string in;
      for ( Declared const & value : decode( frame.bytes ).declared ) {
         in += ( in.empty() ? "" : " " ) + std::string( name( value.event ) );
      }
      all += ( all.empty() || in.empty() ? "" : "|" ) + in;
   }
   return all;
}

void expectRules( MrpRegistrarState registrar, MrpApplicantState from, MrpApplicantEvent event,
                  bool isThere = true ) {
   SCOPED_TRACE( stringValue( registrar ) + ' ' + stringValue( from ) + " on " +
                 stringValue( event ) + ( isThere ? "" : ", unknown" ) );
   Rule expected{ {}, {}, "", from };
   for ( Rule const & rule : rules ) {
      if ( holds( rule.events, event ) && holds( rule.states, from ) ) {
         expected = rule;
      }
   }
   Participant mvrp( MVRP );
   mvrp.advanceTo( 0.05 );
   if ( isThere ) {
      mvrp.attributeIs( et1, vlanType, vlan, stored( Vlan{ vlan } ), from, registrar );
   }
   happens( mvrp, event );
   // A LeaveAll received withdraws what others have declared.
   bool const registered = registrar == mrpIn && event != rxLvAll;
   auto const after = mvrp.attribute( et1, vlan );
   mvrp.advanceBy( 0.2 );
   EXPECT_EQ( saidOfIt( mvrp ),
              std::regex_replace( expected.says, std::regex( "In" ), registered ? "In" : "Mt" ) );
   // Nothing declared and nothing registered is nothing to keep. Joins register, and a LeaveAll
   // sent out of turn tells the registrar nothing.
   bool const kept = registrar != mrpMt || expected.next != VO ||
                     holds( { rxNew, rxJoinIn, rxJoinMt, txLvAll }, event );
   EXPECT_EQ( mvrp.sm().mrpAttrIter( { id( et1 ), vlanType } ) != nullptr, kept );
   ASSERT_EQ( after.has_value(), kept );
   if ( kept ) {
      EXPECT_EQ( stringValue( after->applicant ), stringValue( expected.next ) );
   }
}

TEST( Applicant, saysAndGoesWhereItsStateAndTheEventTell ) {
   for ( auto const registrar : { mrpIn, mrpLv, mrpMt } ) {
      for ( auto const from : { VO, VP, VN, AN, AA, QA, LA, AO, QO, AP, QP, LO } ) {
         for ( auto const event : { appNew, appJoin, appLv, appRedeclare, appFlush, rxNew, rxJoinIn,
                                    rxIn, rxJoinMt, rxMt, rxLv, rxLvAll, txLvAll } ) {
            expectRules( registrar, from, event );
         }
      }
   }
}

// What it does not know it makes, and it goes on from there like any other.
TEST( Applicant, takesAnUnknownAttributeForAnEmptyOneThatItObserves ) {
   for ( auto const event : { appNew, appJoin, rxNew, rxJoinIn, rxIn, rxJoinMt, rxMt, rxLv } ) {
      expectRules( mrpMt, VO, event, false );
   }
}

} // namespace
} // namespace TestSupport
