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

using Step = void ( * )( Participant & );
template < Event event >
void same( Participant & msrp ) {
   msrp.receive( et1, msrpFrame( talkers( ours, { event } ) ) );
}
template < Event event >
void changed( Participant & msrp ) {
   msrp.receive( et1, msrpFrame( talkers( theirs, { event } ) ) );
}
void leaveAllReceived( Participant & msrp ) {
   msrp.receive( et1, msrpFrame( msrpLeaveAll( talkerType ) ) );
}
template < MrpApplicantEvent applicantEvent, MrpRegistrarEvent registrarEvent >
void posted( Participant & msrp ) {
   post( msrp, applicantEvent, registrarEvent );
}

enum Counted { nothing, join, leave };

struct Row {
   char const * what;
   Step step;
   MrpRegistrarState from;
   MrpRegistrarState next;
   char const * told = "";
   Counted counted = nothing;
   std::string logged = "";
   bool rewritten = false;
   char const * waits = "";
};

std::string joinLine( MrpRegistrarState state, MrpRegistrarEvent event ) {
   return "MRP_JOIN: MRP Join received on Ethernet1, attrType: 1, key: 256, state: " +
          stringValue( state ) + ", event: " + stringValue( event );
}
std::string leaveLine( char const * what, MrpRegistrarState state, MrpRegistrarEvent event ) {
   return std::string( "MRP_LV: MRP Lv " ) + what +
          " on Ethernet1, attrType: 1, key: 256, state: " + stringValue( state ) +
          ", event: " + stringValue( event );
}

// In mrpLv the attribute got there by a Lv, and waits on a timer of its own.
TEST( Registrar, tellsCountsLogsAndKeeps ) {
   Step const flush = posted< appFlush, regFlush >;
   Step const timer = posted< invalidApplicantEvent, regLeaveTimer >;
   std::string const flushed = leaveLine( "notified", mrpLv, regFlush );
   std::string const expired = leaveLine( "notified", mrpLv, regLeaveTimer );
   std::vector< Row > rows{
      { "New", changed< New >, mrpIn, mrpIn, "join New", join, joinLine( mrpIn, regNew ) },
      { "New", changed< New >, mrpMt, mrpIn, "join New", join, joinLine( mrpMt, regNew ) },
      { "New", changed< New >, mrpLv, mrpIn, "join New", join },
      { "flush", flush, mrpIn, mrpMt },
      { "flush", flush, mrpMt, mrpMt },
      { "flush", flush, mrpLv, mrpMt, "leave", leave, flushed, false, "explicit" },
      { "timer", timer, mrpIn, mrpIn },
      { "timer", timer, mrpMt, mrpMt },
      { "timer", timer, mrpLv, mrpMt, "leave", leave, expired } };
   auto const joins = [&]( char const * told, MrpRegistrarEvent event, Step refresh, Step change ) {
      std::string const line = joinLine( mrpMt, event );
      rows.push_back( { told, refresh, mrpIn, mrpIn, "", join } );
      rows.push_back( { told, refresh, mrpMt, mrpIn, told, join, line } );
      rows.push_back( { told, refresh, mrpLv, mrpIn } );
      rows.push_back( { told, change, mrpIn, mrpIn, told, join, "", true } );
      rows.push_back( { told, change, mrpMt, mrpIn, told, join, line } );
      rows.push_back( { told, change, mrpLv, mrpIn, told, nothing, "", true } );
   };
   joins( "join JoinIn", regJoinIn, same< JoinIn >, changed< JoinIn > );
   joins( "join JoinMt", regJoinMt, same< JoinMt >, changed< JoinMt > );
   for ( MrpRegistrarState const state : { mrpIn, mrpMt, mrpLv } ) {
      bool const registered = state != mrpMt;
      auto const leaving = registered ? mrpLv : mrpMt;
      rows.push_back( { "Lv", changed< Lv >, state, leaving, "", nothing,
                        leaveLine( "received", state, regLv ), false,
                        registered ? "explicit" : "" } );
      char const * const shared = state == mrpLv ? "explicit shared" : registered ? "shared" : "";
      for ( auto const step : { leaveAllReceived, posted< txLvAll, regTxLvAll >,
                                posted< appRedeclare, regRedeclare > } ) {
         rows.push_back(
            { "LeaveAll, ours, redeclare", step, state, leaving, "", nothing, "", false, shared } );
      }
      char const * const asBefore = state == mrpLv ? "explicit" : "";
      for ( auto const step : { changed< In >, changed< Mt > } ) {
         rows.push_back( { "In, Mt", step, state, state, "", nothing, "", false, asBefore } );
      }
   }

   for ( std::size_t i = 0; i < rows.size(); ++i ) {
      Row const & row = rows[i];
      SCOPED_TRACE( std::to_string( i ) + ": " + row.what + " in " + stringValue( row.from ) );
      Participant msrp( MSRP );
      // It is declared here too, so that it outlives mrpMt.
      msrp.attributeIs( et1, talkerType, stream, stored( ours ), mrpQuietActive,
                        row.from == mrpLv ? mrpIn : row.from );
      if ( row.from == mrpLv ) {
         same< Lv >( msrp );
      }
      msrp.clear();
      auto const & counters = msrp.counters();
      U64 const joinsBefore = counters.numOfJoinIndications();
      U64 const leavesBefore = counters.numOfLeaveIndications();
      LogCapture logs;
      row.step( msrp );
      std::string told;
      for ( Indication const & indication : msrp.lib().indications ) {
         EXPECT_EQ( indication.key, stream );
         told += indication.join
                    ? std::string( "join " ) + name( static_cast< Event >( indication.event ) )
                    : "leave";
      }
      EXPECT_EQ( told, row.told );
      EXPECT_EQ( counters.numOfJoinIndications() - joinsBefore, row.counted == join ? 1u : 0u );
      EXPECT_EQ( counters.numOfLeaveIndications() - leavesBefore, row.counted == leave ? 1u : 0u );
      std::vector< std::string > const none, one{ row.logged };
      EXPECT_EQ( logs.lines(), row.logged.empty() ? none : one );
      auto const after = msrp.attribute( et1, talkerType, stream );
      ASSERT_TRUE( after );
      EXPECT_EQ( stringValue( after->registrar ), stringValue( row.next ) );
      EXPECT_EQ( hex( after->value ), hex( wire( row.rewritten ? theirs : ours ) ) );
      EXPECT_EQ( waitsOn( msrp, stream ), row.waits );
   }
}

TEST( Registrar, tellsOfADomainEachTimeAndNeverRewritesIt ) {
   Participant msrp( MSRP );
   msrp.declare( et1, Domain{ 6, 3, 2 }, JoinIn );
   for ( int i = 0; i < 3; ++i ) {
      msrp.receive( et1, msrpFrame( domains( { 6, 1, 9 }, { JoinIn } ) ) );
   }
   EXPECT_EQ( msrp.counters().numOfJoinIndications(), 3u );
   msrp.receive( et1, msrpFrame( domains( { 6, 1, 9 }, { Lv } ) ) );
   msrp.receive( et1, msrpFrame( domains( { 6, 1, 9 }, { JoinIn } ) ) ); // told, not counted
   EXPECT_EQ( msrp.counters().numOfJoinIndications(), 3u );
   EXPECT_THAT( msrp.indications(),
                testing::Each( std::string( "join domain 6 JoinIn on Ethernet1" ) ) );
   EXPECT_EQ( msrp.indications().size(), 4u );
   EXPECT_EQ( hex( msrp.attribute( et1, domainType, 6 )->value ), "06 03 00 02" );
}

// A refused join counts all the same and leaves nothing registered, so the next one is news again.
TEST( Registrar, forgetsARefusedJoin ) {
   struct Case {
      Event event;
      char const * states;
   };
   for ( auto const [event, states] :
         { Case{ New, "none" }, { JoinMt, "none" }, { JoinIn, "mrpAnxiousObserver mrpMt" } } ) {
      SCOPED_TRACE( name( event ) );
      Participant mvrp( MVRP );
      mvrp.lib().refuse = []( Indication const & ) { return true; };
      LogCapture logs;
      for ( std::size_t i = 1; i <= 2; ++i ) {
         mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ) ) );
         EXPECT_EQ( mvrp.indications().size(), i );
         EXPECT_EQ( mvrp.counters().numOfJoinIndications(), i );
         if ( i == 1 ) {
            EXPECT_EQ( mvrp.states( et1, 10 ), states );
         }
      }
      // The application's name and the labels of the numbers stand for themselves.
      std::string const line =
         "Join was discarded by MSRP, interface: Ethernet1, attrType: " + std::to_string( event ) +
         ", attrEvent: 1";
      EXPECT_THAT( logs.of( "MRP_ERROR" ), ElementsAre( line, line ) );
      mvrp.lib().refuse = nullptr;
      mvrp.receive( et1, mvrpFrame( vlans( 10, { event } ) ) );
      EXPECT_EQ( mvrp.attribute( et1, 10 )->registrar, mrpIn );
   }
}

TEST( Registrar, keepsTheValueOfARefusedChange ) {
   Participant msrp( MSRP );
   msrp.attributeIs( et1, talkerType, stream, stored( ours ), mrpQuietActive, mrpIn );
   msrp.lib().refuse = []( Indication const & ) { return true; };
   changed< JoinIn >( msrp );
   EXPECT_EQ( msrp.states( et1, talkerType, stream ), "mrpQuietActive mrpMt" );
   EXPECT_EQ( hex( msrp.attribute( et1, talkerType, stream )->value ), hex( wire( theirs ) ) );
}

} // namespace
} // namespace TestSupport
