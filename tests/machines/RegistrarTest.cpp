// The registrar: what it tells the application, counts and logs, what it keeps of a value, and on
// which timer an attribute then waits.
#include "tests/machines/MachinesTest.h"
#include "tests/support/Capture.h"

namespace TestSupport {
namespace {

using namespace Mrp;
using testing::ElementsAre;

constexpr U64 stream = 0x100;

Talker valued( U32 latency ) {
   Talker value = talker( stream );
   value.accumulatedLatency = latency;
   return value;
}
Talker const ours = valued( 1 );
Talker const theirs = valued( 2 );

// The event with the value, by the way that it comes. None at all: an In and an Mt.
void happens( Participant & msrp, MrpRegistrarEvent event, Talker const & value ) {
   auto const receives = [&]( Event said ) {
      msrp.receive( et1, msrpFrame( talkers( value, { said } ) ) );
   };
   switch ( event ) {
   case regNew: receives( New ); break;
   case regJoinIn: receives( JoinIn ); break;
   case regJoinMt: receives( JoinMt ); break;
   case regLv: receives( Lv ); break;
   case regLvAll: msrp.receive( et1, msrpFrame( msrpLeaveAll( talkerType ) ) ); break;
   case invalidRegistrarEvent:
      receives( In );
      receives( Mt );
      break;
   default: post( msrp, invalidApplicantEvent, event ); break;
   }
}

struct Row {
   std::vector< MrpRegistrarEvent > events;
   Talker const & value;
   MrpRegistrarState from;
   MrpRegistrarState next;
   char const * does;
   char const * waits = "";
};

// In mrpLv the attribute got there by a Lv, and waits on a timer of its own.
TEST( Registrar, logsTellsCountsAndKeeps ) {
   std::vector< MrpRegistrarEvent > const joins{ regJoinIn, regJoinMt };
   std::vector< MrpRegistrarEvent > const leaveAlls{ regLvAll, regTxLvAll, regRedeclare };
   std::vector< Row > const rows{
      { { regNew }, theirs, mrpIn, mrpIn, "log tell count" },
      { { regNew }, theirs, mrpLv, mrpIn, "tell count" },
      { { regNew }, theirs, mrpMt, mrpIn, "log tell count" },
      { joins, ours, mrpIn, mrpIn, "count" },
      { joins, ours, mrpLv, mrpIn, "" },
      { joins, ours, mrpMt, mrpIn, "log tell count" },
      { joins, theirs, mrpIn, mrpIn, "tell count rewrite" },
      { joins, theirs, mrpLv, mrpIn, "tell rewrite" },
      { joins, theirs, mrpMt, mrpIn, "log tell count" },
      { { regLv }, theirs, mrpIn, mrpLv, "log", "explicit" },
      { { regLv }, theirs, mrpLv, mrpLv, "log", "explicit" },
      { { regLv }, theirs, mrpMt, mrpMt, "log" },
      { leaveAlls, ours, mrpIn, mrpLv, "", "shared" },
      { leaveAlls, ours, mrpLv, mrpLv, "", "explicit shared" },
      { leaveAlls, ours, mrpMt, mrpMt, "" },
      { { regFlush }, ours, mrpIn, mrpMt, "" },
      { { regFlush }, ours, mrpLv, mrpMt, "log tell count", "explicit" },
      { { regLeaveTimer }, ours, mrpLv, mrpMt, "log tell count" },
      { { invalidRegistrarEvent }, theirs, mrpLv, mrpLv, "", "explicit" },
      { { invalidRegistrarEvent, regLeaveTimer }, theirs, mrpIn, mrpIn, "" },
      { { invalidRegistrarEvent, regLeaveTimer, regFlush }, theirs, mrpMt, mrpMt, "" } };
   for ( Row const & row : rows ) {
      for ( MrpRegistrarEvent const event : row.events ) {
         std::string const what = stringValue( event );
         SCOPED_TRACE( what + " in " + stringValue( row.from ) );
         bool const isJoin = event < regLv;
         Participant msrp( MSRP );
         // It is declared here too, so that it outlives mrpMt.
         msrp.attributeIs( et1, talkerType, stream, stored( ours ), mrpQuietActive,
                           row.from == mrpLv ? mrpIn : row.from );
         if ( row.from == mrpLv ) {
            happens( msrp, regLv, ours );
         }
         LogCapture logs;
         // The state is the new one by the time that the application hears of it.
         msrp.lib().react = [&]( Indication const & ) {
            EXPECT_EQ( msrp.attribute( et1, talkerType, stream )->registrar, row.next );
         };
         happens( msrp, event, row.value );
         auto const after = msrp.attribute( et1, talkerType, stream );
         ASSERT_TRUE( after );
         EXPECT_EQ( stringValue( after->registrar ), stringValue( row.next ) );
         EXPECT_EQ( waitsOn( msrp, stream ), row.waits );

         std::string does;
         for ( std::string const & line : logs.lines() ) {
            does += "log ";
            std::string const log = isJoin           ? "MRP_JOIN: MRP Join received"
                                    : event == regLv ? "MRP_LV: MRP Lv received"
                                                     : "MRP_LV: MRP Lv notified";
            EXPECT_EQ( line, log + " on Ethernet1, attrType: 1, key: 256, state: " +
                                stringValue( row.from ) + ", event: " + what );
         }
         for ( std::string const & told : msrp.indications() ) {
            does += "tell ";
            EXPECT_EQ( told, isJoin ? "join talker 0x100 " + what.substr( 3 ) + " on Ethernet1"
                                    : "leave talker 0x100 on Ethernet1" );
         }
         auto const & counters = msrp.counters();
         U64 const joined = counters.numOfJoinIndications();
         U64 const left = counters.numOfLeaveIndications();
         EXPECT_EQ( isJoin ? left : joined, 0u );
         does += ( isJoin ? joined : left ) == 1 ? "count " : "";
         does += after->value == stored( ours ) ? "" : "rewrite ";
         EXPECT_EQ( does, row.does + std::string( *row.does ? " " : "" ) );
      }
   }
}

TEST( Registrar, tellsOfADomainEachTimeAndNeverRewritesIt ) {
   Participant msrp( MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, JoinIn );
   for ( Event const event : { JoinIn, JoinIn, Lv, JoinIn } ) { // the last is told, not counted
      msrp.receive( et1, msrpFrame( domains( { 6, 1, 9 }, { event } ) ) );
   }
   EXPECT_EQ( msrp.counters().numOfJoinIndications(), 2u );
   std::string const told = "join domain 6 JoinIn on Ethernet1";
   EXPECT_THAT( msrp.indications(), ElementsAre( told, told, told ) );
   EXPECT_EQ( hex( msrp.attribute( et1, domainType, 6 )->value ), "06 03 00 02" );
}

// A refused join counts all the same and leaves nothing registered, so the next one is news again.
TEST( Registrar, forgetsARefusedJoin ) {
   for ( Event const event : { New, JoinIn, JoinMt } ) {
      SCOPED_TRACE( name( event ) );
      Participant mvrp( MVRP );
      mvrp.lib().refuse = []( Indication const & ) { return true; };
      LogCapture logs;
      mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ) ) );
      EXPECT_EQ( mvrp.states( et1, 10 ), event == JoinIn ? "mrpAnxiousObserver mrpMt" : "none" );
      mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ) ) );
      EXPECT_EQ( mvrp.indications().size(), 2u );
      EXPECT_EQ( mvrp.counters().numOfJoinIndications(), 2u );
      // The application's name and the labels of the numbers stand for themselves.
      std::string const line =
         "Join was discarded by MSRP, interface: Ethernet1, attrType: " + std::to_string( event ) +
         ", attrEvent: 1";
      EXPECT_THAT( logs.of( "MRP_ERROR" ), ElementsAre( line, line ) );
   }
}

TEST( Registrar, keepsTheValueOfARefusedChange ) {
   Participant msrp( MSRP );
   msrp.attributeIs( et1, talkerType, stream, stored( ours ), mrpQuietActive, mrpIn );
   msrp.lib().refuse = []( Indication const & ) { return true; };
   happens( msrp, regJoinIn, theirs );
   EXPECT_EQ( msrp.states( et1, talkerType, stream ), "mrpQuietActive mrpMt" );
   EXPECT_EQ( hex( msrp.attribute( et1, talkerType, stream )->value ), hex( wire( theirs ) ) );
}

} // namespace
} // namespace TestSupport
