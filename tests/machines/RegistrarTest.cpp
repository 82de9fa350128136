// The registrar: what it tells the application, counts and logs, what it keeps of a value, and on
// which timer an attribute then waits.
#include "tests/machines/MachinesTest.h"
#include "tests/support/Capture.h"

namespace TestSupport {
namespace {

using namespace Mrp;

constexpr U64 stream = 0x8000'0000'0000'0100;
char const * const streamInLogs = "-9223372036854775552";

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
   std::string does;
   std::string waits = "";
};
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

// An application that refuses every join makes one difference: what it has been told of is not
// registered. In mrpLv the attribute got there by a Lv, and waits on a timer of its own.
void expectRow( Row const & row, MrpRegistrarEvent event, bool refuses ) {
   std::string const what = stringValue( event );
   SCOPED_TRACE( what + " in " + stringValue( row.from ) + ( refuses ? ", refused" : "" ) );
   bool const isJoin = event < regLv;
   Participant msrp( MSRP );
   // It is declared here too, so that it outlives mrpMt.
   msrp.attributeIs( et1, talkerType, stream, stored( ours ), mrpQuietActive,
                     row.from == mrpLv ? mrpIn : row.from );
   if ( row.from == mrpLv ) {
      happens( msrp, regLv, ours );
   }
   LogCapture const logs;
   msrp.lib().refuse = [=]( Indication const & ) { return refuses; };
   // The state is the new one by the time that the application hears of it.
   msrp.lib().react = [&]( Indication const & ) {
      EXPECT_EQ( msrp.attribute( et1, talkerType, stream )->registrar, row.next );
   };
   happens( msrp, event, row.value );

   auto const after = msrp.attribute( et1, talkerType, stream );
   ASSERT_TRUE( after );
   bool const refused = refuses && isJoin && !msrp.indications().empty();
   EXPECT_EQ( stringValue( after->registrar ), stringValue( refused ? mrpMt : row.next ) );
   EXPECT_EQ( waitsOn( msrp, stream ), row.waits );

   std::string const log = std::string( isJoin           ? "MRP_JOIN: MRP Join received"
                                        : event == regLv ? "MRP_LV: MRP Lv received"
                                                         : "MRP_LV: MRP Lv notified" ) +
                           " on Ethernet1, attrType: 1, key: " + streamInLogs +
                           ", state: " + stringValue( row.from ) + ", event: " + what;
   std::vector< std::string > lines( row.does.starts_with( "log" ) ? 1 : 0, log );
   std::string does = lines.empty() ? "" : "log ";
   for ( Indication const & told : msrp.lib().indications ) {
      does += "tell ";
      EXPECT_EQ( told.text( Protocol::msrp ),
                 isJoin ? "join talker 0x8000000000000100 " + what.substr( 3 ) + " on Ethernet1"
                        : "leave talker 0x8000000000000100 on Ethernet1" );
      if ( refused ) { // the words name another application, and the event for the type
         lines.push_back(
            "MRP_ERROR: Join was discarded by MSRP, interface: Ethernet1, attrType: " +
            std::to_string( told.event ) + ", attrEvent: 1" );
      }
   }
   EXPECT_EQ( logs.lines(), lines );
   U64 const joined = msrp.counters().numOfJoinIndications();
   U64 const left = msrp.counters().numOfLeaveIndications();
   EXPECT_EQ( isJoin ? left : joined, 0u );
   does += ( isJoin ? joined : left ) == 1 ? "count " : "";
   does += after->value == stored( ours ) ? "" : "rewrite ";
   EXPECT_EQ( does, row.does.empty() ? "" : row.does + " " );
}

TEST( Registrar, logsTellsCountsAndKeeps ) {
   for ( Row const & row : rows ) {
      for ( MrpRegistrarEvent const event : row.events ) {
         expectRow( row, event, false );
         expectRow( row, event, true );
      }
   }
}

} // namespace
} // namespace TestSupport
