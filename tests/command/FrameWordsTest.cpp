// Frames in words.
#include "command/report/FrameWords.h"

#include "tests/support/Mrpdu.h"

#include <gtest/gtest.h>

namespace {

using namespace TestSupport;

struct Case {
   Bytes frame;
   std::string words;
};
// Each has its words, and wherever it is cut it has some.
void expectWords( Mrp::MrpApplication application, std::vector< Case > const & cases ) {
   for ( Case const & each : cases ) {
      EXPECT_EQ( Command::frameWords( application, each.frame ), each.words );
      for ( Bytes cut = each.frame; !cut.empty(); cut.pop_back() ) {
         EXPECT_NE( Command::frameWords( application, cut ), "" );
      }
   }
}

TEST( FrameWordsTest, NeighboursWithOneEventGoTogetherAndWhatCannotBeReadIsSaidBehindWhatCan ) {
   auto const ten = vlans( 10, { New } );
   expectWords(
      Mrp::MVRP,
      { { mvrpFrame( vlans( 10, { JoinIn, JoinIn, JoinIn, JoinIn } ) ), "VLAN 10-13 JoinIn" },
        { mvrpFrame( message( vlans( 10, { New, New, Lv, Mt } ).leaveAll(), vlans( 14, { Mt } ) ) ),
          "VLAN LeaveAll, 10-11 New, 12 Lv, 13 Mt, 14 Mt" },
        { mvrpFrame( vlanLeaveAll() ), "VLAN LeaveAll" },
        // A byte of 0xff holds the events 7, 0 and 3.
        { mvrpFrame( vlans( 1, { New, New, New } ).eventBytes( { 0xff } ) ),
          "VLAN 1 event 7, 2 New, 3 JoinMt" },
        { mvrpFrame( vlans( 1, { Lv } ) ).tag( 5 ).noEndMark(), "tagged with VLAN 5; VLAN 1 Lv" },
        { mvrpFrame(), "no message" },
        { mvrpFrame( ten, Message( 9, 3, {} ) ),
          "VLAN 10 New; not readable from byte 24 on: type 9 with an AttributeLength of 3" },
        { mvrpFrame( vlans( 10, { New } ).header( 0x8000 ) ),
          "VLAN; not readable from byte 17 on: a vector of no values" },
        { {}, "not readable from byte 0 on: the frame ends within its addresses" } } );
}

TEST( FrameWordsTest, TheAttributesOfMsrpInTheirNotation ) {
   Talker const talker{ 0x0200'0000'0055'0001, 0x91e0'f000'fe00, 2, 224, 1, 0x70, 125'000 };
   std::string const values = ", VLAN 2, frames 224 x 1, priority 3, rank 1, latency 125000 ns";
   auto const domain = domains( { 6, 3, 2 }, { JoinIn } );
   std::string const domainWords = "Domain class A JoinIn (priority 3, VID 2)";
   expectWords(
      Mrp::MSRP,
      { { msrpFrame( talkers( talker, { New, New } ) ),
          "Talker Advertise 02:00:00:00:00:55:00:01 to 02:00:00:00:00:55:00:02 New "
          "(destination 91:e0:f0:00:fe:00 to 91:e0:f0:00:fe:01" +
             values + ")" },
        { msrpFrame( failedTalkers( { talker, 0x8000'0200'0000'0077, 19 }, { JoinMt } ) ),
          "Talker Failed 02:00:00:00:00:55:00:01 JoinMt (destination 91:e0:f0:00:fe:00" + values +
             ", bridge 8000.02:00:00:00:00:77, failure 19 (SR class priority mismatch))" },
        { msrpFrame( listeners( 0x0200'0000'0055'0001, { { JoinIn, Ready },
                                                         { JoinIn, AskingFailed },
                                                         { JoinIn, AskingFailed },
                                                         { New, ReadyFailed } } ),
                     domain ),
          "Listener 02:00:00:00:00:55:00:01 JoinIn (Ready), "
          "02:00:00:00:00:55:00:02 to 02:00:00:00:00:55:00:03 JoinIn (Asking Failed), "
          "02:00:00:00:00:55:00:04 New (Ready Failed); " +
             domainWords },
        { msrpFrame( Message( 9, 3, { 1, 2, 3 } ), domain ).version( 1 ),
          "version 1; type 9 with an AttributeLength of 3, skipped; " + domainWords },
        { msrpFrame( message( domain ).listLength( 7 ) ),
          domainWords + "; not readable from byte 28 on: "
                        "the AttributeListLength is 7 for a list of 9 bytes" } } );
}

} // namespace
