// The applicant: what it says for each event in each state, in which of the interface's two
// frames, and where it goes.
#include "tests/machines/MachinesTest.h"

#include <sstream>

namespace TestSupport {
namespace {

using namespace Mrp;

// The states by the standard's short names.
struct Short {
   char const * name;
   MrpApplicantState state;
};
constexpr Short shorts[] = { { "VO", mrpVeryAnxiousObserver }, { "VP", mrpVeryAnxiousPassive },
                             { "VN", mrpVeryAnxiousNew },      { "AN", mrpAnxiousNew },
                             { "AA", mrpAnxiousActive },       { "QA", mrpQuietActive },
                             { "LA", mrpLeavingActive },       { "AO", mrpAnxiousObserver },
                             { "QO", mrpQuietObserver },       { "AP", mrpAnxiousPassive },
                             { "QP", mrpQuietPassive },        { "LO", mrpLeavingObserver } };

MrpApplicantState stateOf( std::string const & shortName ) {
   for ( Short const & s : shorts ) {
      if ( shortName == s.name ) {
         return s.state;
      }
   }
   throw std::logic_error( shortName );
}

bool holds( char const * words, std::string const & word ) {
   std::istringstream in( words );
   for ( std::string each; in >> each; ) {
      if ( each == word ) {
         return true;
      }
   }
   return false;
}

// On these events these states say this in the first and the second frame, and go there. Whatever
// is not told here says nothing and stays.
struct Rule {
   char const * events;
   char const * states;
   char const * first;
   char const * second;
   char const * next;
};
constexpr Rule rules[] = {
   // A new declaration goes out twice, from wherever the machine stands.
   { "appNew", "VO AO QO QP QA VP AA LA AP LO", "New", "New", "QA" },
   // A join goes out the more often, the less of it others have said.
   { "appJoin", "VO QA LO", "Join", "Join", "QA" },
   { "appJoin", "AO LA", "Join", "", "QA" },
   { "appJoin", "QO", "", "", "QP" },
   // Only who has declared says that it leaves.
   { "appLv", "QA VN AN AA", "Lv", "", "VO" },
   { "appLv", "VP", "", "", "VO" },
   { "appLv", "AP", "", "", "AO" },
   { "appLv", "QP", "", "", "QO" },
   // Someone may be about to forget: declare again, or report what is registered.
   { "appRedeclare rxLv rxLvAll", "VO AO QO", "Registered", "", "VO" },
   { "appRedeclare rxLv rxLvAll", "QP QA AA AP", "Join", "Join", "QA" },
   { "appRedeclare rxLv rxLvAll", "AN", "New", "New", "QA" },
   // Our own LeaveAll asks the same of us, once.
   { "txLvAll", "VO AO QO LA", "Registered", "", "VO" },
   { "txLvAll", "QP QA AP", "Join", "", "QA" },
   { "txLvAll", "VP", "Registered", "Join", "QA" },
   { "txLvAll", "VN", "New", "New", "QA" },
   { "txLvAll", "AN", "New", "", "QA" },
   // Others who declare make it quiet.
   { "rxJoinIn", "VO", "", "", "AO" },
   { "rxJoinIn", "AO", "", "", "QO" },
   { "rxJoinIn", "AP", "", "", "QP" },
   { "rxJoinIn", "VP", "Join", "", "QA" },
   { "rxJoinIn rxIn", "AA", "", "", "QA" },
   // Others who miss a declaration make it speak.
   { "rxJoinMt rxMt", "QO", "", "", "AO" },
   { "rxJoinMt rxMt", "QP QA", "Join", "", "QA" },
   { "rxJoinMt rxMt", "LO", "", "", "VO" } };

constexpr U16 vlan = 10;

// Something else stands first in each of the two frames, so that both leave, the first one first.
constexpr U16 mark = 1;
void openBothFrames( Participant & mvrp ) {
   for ( bool const second : { false, true } ) {
      U8 const type = mvrp.load( Vlan{ mark } );
      mvrp.lib().mrpSendAttributeIntf( MrpParameters( id( et1 ), type, Lv ), id( et1 ), second );
   }
}

// How each event comes about, behind the marks.
struct Door {
   char const * event;
   void ( *open )( Participant & );
};
// What was open leaves ahead of a frame's attributes, so that the marks are an answer of their own.
template < Event event >
void receives( Participant & mvrp ) {
   mvrp.attributeIs( et1, vlanType, mark, stored( Vlan{ mark } ), mrpQuietActive, mrpIn );
   mvrp.receive( et1, mvrpFrame( message( vlans( mark, { Lv } ), vlans( vlan, { event } ) ) ) );
}
template < Event event >
void declares( Participant & mvrp ) {
   openBothFrames( mvrp );
   mvrp.declare( et1, Vlan{ vlan }, event );
}
template < MrpApplicantEvent event >
void posts( Participant & mvrp ) {
   openBothFrames( mvrp );
   post( mvrp, event, invalidRegistrarEvent );
}
void receivesLeaveAll( Participant & mvrp ) {
   openBothFrames( mvrp );
   mvrp.receive( et1, mvrpFrame( vlanLeaveAll() ) );
}
void sendsLeaveAll( Participant & mvrp ) {
   openBothFrames( mvrp );
   mvrp.sm().mrpPamSm()->transmitAllLeaveAll( id( et1 ) );
}
constexpr Door doors[] = { { "appNew", declares< New > },
                           { "appJoin", declares< JoinIn > },
                           { "appJoin", declares< JoinMt > },
                           { "appLv", declares< Lv > },
                           { "appRedeclare", posts< appRedeclare > },
                           { "appFlush", posts< appFlush > },
                           { "rxNew", receives< New > },
                           { "rxJoinIn", receives< JoinIn > },
                           { "rxIn", receives< In > },
                           { "rxJoinMt", receives< JoinMt > },
                           { "rxMt", receives< Mt > },
                           { "rxLv", receives< Lv > },
                           { "rxLvAll", receivesLeaveAll },
                           { "txLvAll", sendsLeaveAll } };

// Words of a rule as they stand on the wire: the registrar's state tells the two joins apart.
std::string onTheWire( std::string const & words, bool registered ) {
   if ( words == "Join" ) {
      return registered ? "JoinIn" : "JoinMt";
   }
   if ( words == "Registered" ) {
      return registered ? "In" : "Mt";
   }
   return words;
}

// What the second or the first of the two frames says of the VLAN.
std::string said( Participant const & mvrp, bool second ) {
   std::string all;
   std::size_t frame = 0;
   for ( SentFrame const & sent : mvrp.sent() ) {
      auto const values = decode( sent.bytes ).values();
      if ( values.empty() || values[0].key != mark || ( frame++ == 1 ) != second ) {
         continue;
      }
      for ( Declared const & value : values ) {
         if ( value.key == vlan ) {
            all += ( all.empty() ? "" : " " ) + std::string( name( value.event ) );
         }
      }
   }
   EXPECT_EQ( frame, 2u );
   return all;
}

class Applicant : public testing::TestWithParam< MrpRegistrarState > {};

TEST_P( Applicant, saysAndGoesWhereItsStateAndTheEventTell ) {
   MrpRegistrarState const registrar = GetParam();
   for ( Short const & from : shorts ) {
      for ( Door const & door : doors ) {
         SCOPED_TRACE( std::string( from.name ) + " on " + door.event );
         Rule expected{ "", "", "", "", from.name };
         for ( Rule const & rule : rules ) {
            if ( holds( rule.events, door.event ) && holds( rule.states, from.name ) ) {
               expected = rule;
            }
         }
         Participant mvrp( MVRP );
         mvrp.advanceTo( 0.05 );
         mvrp.attributeIs( et1, vlanType, vlan, stored( Vlan{ vlan } ), from.state, registrar );
         mvrp.clear();
         door.open( mvrp );
         // A LeaveAll received withdraws what others have declared.
         bool const registered = registrar == mrpIn && std::string( door.event ) != "rxLvAll";
         auto const after = mvrp.attribute( et1, vlan );
         mvrp.advanceBy( 0.2 );
         EXPECT_EQ( said( mvrp, false ), onTheWire( expected.first, registered ) );
         EXPECT_EQ( said( mvrp, true ), onTheWire( expected.second, registered ) );

         MrpApplicantState const next = stateOf( expected.next );
         // Nothing declared and nothing registered is nothing to keep. Joins register, and a
         // LeaveAll sent out of turn tells the registrar nothing.
         bool const kept = registrar != mrpMt || next != mrpVeryAnxiousObserver ||
                           holds( "rxNew rxJoinIn rxJoinMt txLvAll", door.event );
         ASSERT_EQ( after.has_value(), kept );
         if ( kept ) {
            EXPECT_EQ( stringValue( after->applicant ), stringValue( next ) );
         }
      }
   }
}

INSTANTIATE_TEST_SUITE_P(, Applicant, testing::Values( mrpIn, mrpLv, mrpMt ),
                         []( auto const & state ) { return stringValue( state.param ); } );

// It makes what it does not know; only a join keeps it.
TEST( ApplicantOfAnUnknownAttribute, isKeptByJoinsAlone ) {
   struct Row {
      Event event;
      char const * states;
   };
   for ( auto const [event, states] : { Row{ New, "mrpVeryAnxiousObserver mrpIn" },
                                        { JoinIn, "mrpAnxiousObserver mrpIn" },
                                        { JoinMt, "mrpVeryAnxiousObserver mrpIn" },
                                        { In, "none" },
                                        { Mt, "none" },
                                        { Lv, "none" } } ) {
      SCOPED_TRACE( name( event ) );
      Participant mvrp( MVRP );
      mvrp.receive( et1, mvrpFrame( vlans( vlan, { event } ) ) );
      EXPECT_EQ( mvrp.states( et1, vlan ), states );
      EXPECT_EQ( mvrp.sm().mrpAttrIter( { id( et1 ), vlanType } ) != nullptr,
                 std::string( states ) != "none" );
   }
}

} // namespace
} // namespace TestSupport
