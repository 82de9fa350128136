// Frames in words.
#include "command/report/FrameWords.h"

#include "tests/support/Mrpdu.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace TestSupport;

std::string mvrp( Frame const & frame ) { return Command::frameWords( Mrp::MVRP, frame.bytes() ); }
std::string msrp( Frame const & frame ) { return Command::frameWords( Mrp::MSRP, frame.bytes() ); }

TEST( FrameWordsTest, NeighboursWithOneEventGoTogether ) {
   EXPECT_EQ( mvrp( mvrpFrame( message( vlans( 10, { JoinIn, JoinIn, JoinIn, JoinIn } ) ) ) ),
              "VLAN 10-13 JoinIn" );
   EXPECT_EQ( mvrp( mvrpFrame(
                 message( vlans( 10, { New, New, Lv, Mt } ).leaveAll(), vlans( 14, { Mt } ) ) ) ),
              "VLAN LeaveAll, 10-11 New, 12 Lv, 13 Mt, 14 Mt" );
   EXPECT_EQ( mvrp( mvrpFrame( vlanLeaveAll() ) ), "VLAN LeaveAll" );
   // A byte of 0xff holds the events 7, 0 and 3.
   EXPECT_EQ( mvrp( mvrpFrame( vlans( 1, { New, New, New } ).eventBytes( { 0xff } ) ) ),
              "VLAN 1 event 7, 2 New, 3 JoinMt" );
}

TEST( FrameWordsTest, TheAttributesOfMsrpInTheirNotation ) {
   Talker const talker{ 0x0200'0000'0055'0001, 0x91e0'f000'fe00, 2, 224, 1, 0x70, 125'000 };
   std::string const values = ", VLAN 2, frames 224 x 1, priority 3, rank 1, latency 125000 ns";
   EXPECT_EQ( msrp( msrpFrame( talkers( talker, { New, New } ) ) ),
              "Talker Advertise 02:00:00:00:00:55:00:01 to 02:00:00:00:00:55:00:02 New "
              "(destination 91:e0:f0:00:fe:00 to 91:e0:f0:00:fe:01" +
                 values + ")" );
   EXPECT_EQ(
      msrp( msrpFrame( failedTalkers( { talker, 0x8000'0200'0000'0077, 19 }, { JoinMt } ) ) ),
      "Talker Failed 02:00:00:00:00:55:00:01 JoinMt (destination 91:e0:f0:00:fe:00" + values +
         ", bridge 8000.02:00:00:00:00:77, failure 19 (SR class priority mismatch))" );
   EXPECT_EQ( msrp( msrpFrame( listeners( 0x0200'0000'0055'0001, { { JoinIn, Ready },
                                                                   { JoinIn, AskingFailed },
                                                                   { JoinIn, AskingFailed },
                                                                   { Mt, Ignore },
                                                                   { New, ReadyFailed } } ),
                               domains( { 6, 3, 2 }, { JoinIn } ) ) ),
              "Listener 02:00:00:00:00:55:00:01 JoinIn (Ready), "
              "02:00:00:00:00:55:00:02 to 02:00:00:00:00:55:00:03 JoinIn (Asking Failed), "
              "02:00:00:00:00:55:00:04 Mt (Ignore), 02:00:00:00:00:55:00:05 New (Ready Failed); "
              "Domain class A JoinIn (priority 3, VID 2)" );
   EXPECT_EQ( msrp( msrpFrame( domains( { 7, 255, 2 }, { New } ) ) ),
              "Domain class id 7 New (priority 255, VID 2)" );
}

TEST( FrameWordsTest, WhatCannotBeReadIsSaidBehindWhatCan ) {
   EXPECT_EQ( mvrp( mvrpFrame( vlans( 10, { New } ) ).cut( 5 ) ),
              "VLAN; not readable from byte 17 on: the frame ends within the events of a vector" );
   EXPECT_EQ( mvrp( mvrpFrame( message( vlans( 10, { New } ) ), Message( 9, 3, {} ) ) ),
              "VLAN 10 New; not readable from byte 24 on: type 9 with an AttributeLength of 3" );
   EXPECT_EQ(
      msrp(
         msrpFrame( Message( 9, 3, { 1, 2, 3 } ), domains( { 6, 3, 2 }, { New } ) ).version( 1 ) ),
      "version 1; type 9 with an AttributeLength of 3, skipped; "
      "Domain class A New (priority 3, VID 2)" );
   EXPECT_EQ( msrp( msrpFrame( message( domains( { 6, 3, 2 }, { New } ) ).listLength( 7 ) ) ),
              "Domain class A New (priority 3, VID 2); not readable from byte 28 on: "
              "the AttributeListLength is 7 for a list of 9 bytes" );
   EXPECT_EQ( mvrp( mvrpFrame( vlans( 10, { New } ).header( 0x8000 ) ) ),
              "VLAN; not readable from byte 17 on: a vector of no values" );
   EXPECT_EQ( mvrp( mvrpFrame() ), "no message" );
   EXPECT_EQ( mvrp( mvrpFrame( vlans( 1, { Lv } ) ).tag( 5 ).noEndMark() ),
              "tagged with VLAN 5; VLAN 1 Lv" );
   EXPECT_EQ( Command::frameWords( Mrp::MVRP, {} ),
              "not readable from byte 0 on: the frame ends within its addresses" );
}

// Any bytes get words; sanitizers and the checked standard library watch.
TEST( FrameWordsTest, AnyBytesWillDo ) {
   std::mt19937 random( 1 );
   Bytes const seeds[] = {
      mvrpFrame( message( vlans( 10, { New, Lv } ).leaveAll(), vlans( 4000, { Mt } ) ) ),
      msrpFrame( talkers( 1, { New, New } ), listeners( 5, { { New, Ready }, { Lv, Ready } } ),
                 domains( { 6, 3, 2 }, { JoinIn } ) ) };
   for ( int round = 0; round < 20'000; ++round ) {
      Bytes frame = seeds[round % 2];
      for ( auto flips = random() % 4; flips > 0; --flips ) {
         frame[12 + random() % ( frame.size() - 12 )] = static_cast< U8 >( random() );
      }
      frame.resize( random() % ( frame.size() + 4 ) );
      EXPECT_NE( Command::frameWords( round % 2 == 0 ? Mrp::MVRP : Mrp::MSRP, frame ), "" );
   }
}

} // namespace
