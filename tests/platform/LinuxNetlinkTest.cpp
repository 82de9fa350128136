// Dumps of the kernel's links that come to nothing, and datagrams that are not sound. How links are
// read and followed is tested with the kernel's own, LinuxHostTest.cpp.
#include "mrp/platform/linux/LinkTable.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <linux/if_bridge.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace Linux {
namespace {

using Korv::U16;
using Korv::U32;
using Korv::U8;
using Bytes = std::vector< U8 >;

constexpr U32 ownPort = 4711;
constexpr U32 otherPort = 0;

template < class Record >
Bytes bytesOf( Record const & record ) {
   auto const * const first = reinterpret_cast< U8 const * >( &record );
   return Bytes( first, first + sizeof record );
}

void append( Bytes & to, Bytes const & bytes ) {
   to.insert( to.end(), bytes.begin(), bytes.end() );
   to.resize( NLMSG_ALIGN( to.size() ) );
}

Bytes attribute( int type, Bytes const & payload ) {
   Bytes bytes = bytesOf( nlattr{ static_cast< U16 >( sizeof( nlattr ) + payload.size() ),
                                  static_cast< U16 >( type ) } );
   append( bytes, payload );
   return bytes;
}

Bytes message( U16 type, Bytes const & body, U16 flags = 0, U32 sequence = 0,
               U32 port = otherPort ) {
   Bytes bytes = bytesOf( nlmsghdr{ static_cast< U32 >( sizeof( nlmsghdr ) + body.size() ), type,
                                    flags, sequence, port } );
   append( bytes, body );
   return bytes;
}

// What is said of a link: with its name, and what else there is.
Bytes link( int index, std::string const & name, Bytes const & attributes = {},
            U8 family = AF_UNSPEC ) {
   ifinfomsg info{};
   info.ifi_family = family;
   info.ifi_index = index;
   Bytes body = bytesOf( info );
   append( body, attributes );
   append( body, attribute( IFLA_IFNAME, Bytes( name.begin(), name.end() ) ) );
   return body;
}

Bytes forwardingPort( int index, std::string const & name ) {
   Bytes const state = attribute( IFLA_BRPORT_STATE, { BR_STATE_FORWARDING } );
   return link( index, name, attribute( IFLA_PROTINFO | NLA_F_NESTED, state ), AF_BRIDGE );
}

class LinuxLinkTable : public testing::Test {
 protected:
   void announce( Bytes const & link ) { table.handleDatagram( message( RTM_NEWLINK, link ) ); }
   // Of the dump asked for last.
   void answer( U16 type, Bytes const & body, U16 flags = NLM_F_MULTI ) {
      table.handleDatagram( message( type, body, flags, sequence, ownPort ) );
   }
   void done( U16 flags = NLM_F_MULTI ) { answer( NLMSG_DONE, bytesOf( 0 ), flags ); }
   // A whole dump of links, none of them a port.
   void dump( std::vector< Bytes > const & links ) {
      table.doDump();
      for ( Bytes const & each : links ) {
         answer( RTM_NEWLINK, each );
      }
      done();
      done();
   }
   // "eth0- eth1+": gone, come or changed. Since the last time.
   std::string changes() { return std::exchange( changes_, {} ); }
   // "LPL": for links, ports and links. Since the last time.
   std::string asked() { return std::exchange( asked_, {} ); }

   std::string changes_, asked_;
   U32 sequence = 0;
   bool refuses = false;
   LinkTable table{ ownPort,
                    [this]( U8 family, U32 number ) {
                       asked_ += family == AF_BRIDGE ? 'P' : 'L';
                       sequence = number;
                       return !refuses;
                    },
                    [this]( std::string const & name ) {
                       changes_ += ( changes_.empty() ? "" : " " ) + name +
                                   ( table.link( name ) ? "+" : "-" );
                    } };
};

TEST_F( LinuxLinkTable, whatADumpDoesNotMentionHasGone ) {
   dump( { link( 2, "eth0" ), link( 3, "eth1" ) } );
   EXPECT_EQ( asked(), "LP" );
   EXPECT_EQ( changes(), "eth0+ eth1+" );
   announce( forwardingPort( 3, "eth1" ) );
   changes();
   table.doDump();
   answer( RTM_NEWLINK, link( 3, "eth1" ) );
   announce( link( 4, "eth2" ) ); // comes meanwhile
   done();
   EXPECT_EQ( changes(), "eth2+ eth0-" );
   done();
   EXPECT_EQ( changes(), "eth1+" );
   EXPECT_FALSE( table.link( "eth1" )->portState );
}

TEST_F( LinuxLinkTable, aPortThatLeavesItsBridgeIsStillALink ) {
   announce( link( 3, "eth1" ) );
   announce( forwardingPort( 3, "eth1" ) );
   EXPECT_EQ( table.link( "eth1" )->portState, BR_STATE_FORWARDING );
   table.handleDatagram( message( RTM_DELLINK, forwardingPort( 3, "eth1" ) ) );
   ASSERT_EQ( changes(), "eth1+ eth1+ eth1+" );
   EXPECT_FALSE( table.link( "eth1" )->portState );
}

TEST_F( LinuxLinkTable, aTornDumpIsAskedForAgainAndDeletesNothing ) {
   dump( { link( 2, "eth0" ) } );
   table.doDump();
   asked();
   changes();
   answer( RTM_NEWLINK, link( 3, "eth1" ), NLM_F_MULTI | NLM_F_DUMP_INTR );
   done();
   EXPECT_EQ( asked(), "L" );
   // Announcements lost while it runs: once more, and not two at a time.
   table.doDump();
   table.doDump();
   EXPECT_EQ( asked(), "" );
   done();
   EXPECT_EQ( asked(), "L" );
   EXPECT_EQ( changes(), "eth1+" );
   // The mark may also stand on the end alone, and in the second half.
   answer( RTM_NEWLINK, link( 2, "eth0" ) );
   answer( RTM_NEWLINK, link( 3, "eth1" ) );
   done();
   done( NLM_F_MULTI | NLM_F_DUMP_INTR );
   EXPECT_EQ( asked(), "PL" );
   EXPECT_TRUE( table.isDumping() );
}

TEST_F( LinuxLinkTable, answersOfOtherDumpsAndDumpsThatFailLeaveWhatIsKnown ) {
   dump( { link( 2, "eth0" ) } );
   changes();
   U32 const old = sequence;
   auto const comes = [&]( U16 type, Bytes const & body, U32 number, U32 port ) {
      table.handleDatagram( message( type, body, NLM_F_MULTI, number, port ) );
   };
   comes( RTM_NEWLINK, link( 3, "eth1" ), old, ownPort );
   table.doDump();
   comes( RTM_NEWLINK, link( 4, "eth2" ), old, ownPort );
   comes( NLMSG_DONE, bytesOf( 0 ), old, ownPort );
   comes( NLMSG_DONE, bytesOf( 0 ), sequence, otherPort ); // of another socket
   EXPECT_TRUE( table.isDumping() );

   answer( NLMSG_ERROR, bytesOf( nlmsgerr{ -EBUSY, {} } ) );
   done();                              // of the ports
   EXPECT_TRUE( table.isDumpFailed() ); // and is no longer under way
   table.doDump();
   EXPECT_FALSE( table.isDumpFailed() );
   answer( NLMSG_DONE, bytesOf( -ENOMEM ) );
   done();
   refuses = true;
   table.doDump();
   EXPECT_TRUE( table.isDumpFailed() );
   EXPECT_EQ( changes(), "" );
   refuses = false;
   dump( { link( 2, "eth0" ) } );
   EXPECT_FALSE( table.isDumpFailed() );
}

TEST_F( LinuxLinkTable, whatIsNotSoundIsLeftOut ) {
   announce( link( 2, "eth0" ) );
   changes();
   std::size_t const head = sizeof( nlmsghdr ) + sizeof( ifinfomsg );
   auto changedAt = [&]( std::size_t at, U8 value ) {
      Bytes bytes = message( RTM_NEWLINK, link( 3, "eth1" ) );
      bytes[at] = value;
      return bytes;
   };
   for ( Bytes const & bytes : {
            Bytes( 15 ),                                    // not even a header
            Bytes( 64 ),                                    // lengths of 0
            changedAt( 0, 15 ),                             // a length below the header's
            changedAt( 1, 1 ),                              // above the datagram's
            message( RTM_NEWLINK, Bytes( 15 ) ),            // half a link
            changedAt( head, 3 ),                           // an attribute below its header
            changedAt( head + 1, 1 ),                       // above the message
            message( RTM_NEWLINK, bytesOf( ifinfomsg{} ) ), // no name
         } ) {
      table.handleDatagram( bytes );
      EXPECT_EQ( changes(), "" );
   }
}

} // namespace
} // namespace Linux
