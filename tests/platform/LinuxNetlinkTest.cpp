#include "mrp/platform/linux/LinkTable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_bridge.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
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
   Bytes bytes( sizeof record );
   std::memcpy( bytes.data(), &record, sizeof record );
   return bytes;
}

void append( Bytes & to, Bytes const & bytes ) {
   to.insert( to.end(), bytes.begin(), bytes.end() );
   to.resize( NLMSG_ALIGN( to.size() ) );
}

Bytes attribute( unsigned type, Bytes const & payload ) {
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

struct Says {
   int index;
   char const * name;
   U32 mtu = 1500;
   unsigned flags = IFF_UP | IFF_RUNNING;
   U16 hardware = ARPHRD_ETHER;
};

Bytes linkBody( U8 family, Says const & says ) {
   ifinfomsg info{};
   info.ifi_family = family;
   info.ifi_type = says.hardware;
   info.ifi_index = says.index;
   info.ifi_flags = says.flags;
   Bytes body = bytesOf( info );
   std::string const name = says.name;
   append( body, attribute( IFLA_IFNAME, Bytes( name.c_str(), name.c_str() + name.size() + 1 ) ) );
   append( body, attribute( IFLA_MTU, bytesOf( says.mtu ) ) );
   append( body, attribute( IFLA_ADDRESS, { 2, 0, 0, 0, 0, static_cast< U8 >( says.index ) } ) );
   return body;
}

Bytes linkBody( Says const & says ) { return linkBody( AF_UNSPEC, says ); }

Bytes portBody( Says const & says, U8 state ) {
   Bytes nested = attribute( IFLA_BRPORT_PRIORITY, { 32, 0 } );
   append( nested, attribute( IFLA_BRPORT_STATE, { state } ) );
   Bytes body = linkBody( AF_BRIDGE, says );
   append( body, attribute( IFLA_PROTINFO | NLA_F_NESTED, nested ) );
   return body;
}

class LinuxLinkTable : public testing::Test {
 protected:
   struct Asked {
      U8 family;
      U32 sequence;
   };

   void announce( U16 type, Bytes const & body ) { table.handleDatagram( message( type, body ) ); }
   void announce( Says const & says ) { announce( RTM_NEWLINK, linkBody( says ) ); }
   // Of the dump asked for last.
   void answer( U16 type, Bytes const & body, U16 flags = NLM_F_MULTI ) {
      table.handleDatagram( message( type, body, flags, asked.back().sequence, ownPort ) );
   }
   void done( U16 flags = NLM_F_MULTI ) { answer( NLMSG_DONE, bytesOf( 0 ), flags ); }
   // A whole dump of links and ports.
   void dump( std::vector< Says > const & links ) {
      table.doDump();
      for ( Says const & says : links ) {
         answer( RTM_NEWLINK, linkBody( says ) );
      }
      done();
      done();
   }
   // "eth0 eth1- eth1+": changed, gone, come.
   std::string changes() { return std::exchange( changes_, {} ); }

   std::vector< Asked > asked;
   bool refuses = false;
   std::string changes_;
   LinkTable table{ ownPort,
                    [this]( U8 family, U32 sequence ) {
                       asked.push_back( { family, sequence } );
                       return !refuses;
                    },
                    [this]( std::string const & name ) {
                       changes_ += ( changes_.empty() ? "" : " " ) + name +
                                   ( table.link( name ) ? "+" : "-" );
                    } };
};

TEST_F( LinuxLinkTable, readsLinksAndThenPortsAndFollowsThem ) {
   table.doDump();
   ASSERT_EQ( asked.size(), 1u );
   EXPECT_EQ( asked[0].family, AF_UNSPEC );
   // Messages of one datagram, the last of which lacks the filling.
   Bytes datagram = message( RTM_NEWLINK, linkBody( { 2, "eth0", 9000 } ), NLM_F_MULTI,
                             asked[0].sequence, ownPort );
   append( datagram, message( RTM_NEWLINK, linkBody( { 3, "tun0", 1500, IFF_UP, ARPHRD_NONE } ),
                              NLM_F_MULTI, asked[0].sequence, ownPort ) );
   table.handleDatagram( datagram );
   done();
   ASSERT_EQ( asked.size(), 2u );
   EXPECT_EQ( asked[1].family, AF_BRIDGE );
   answer( RTM_NEWLINK, portBody( { 2, "eth0" }, BR_STATE_BLOCKING ) );
   EXPECT_TRUE( table.isDumping() );
   done();
   EXPECT_FALSE( table.isDumping() );
   EXPECT_EQ( changes(), "eth0+ tun0+ eth0+" );

   Link const * const eth0 = table.link( "eth0" );
   ASSERT_TRUE( eth0 );
   EXPECT_EQ( eth0->mtu, 9000u );
   EXPECT_EQ( eth0->addr, Pelk::EthAddr( 2, 0, 0, 0, 0, 2 ) );
   EXPECT_TRUE( eth0->ethernet && eth0->up );
   EXPECT_EQ( eth0->portState, BR_STATE_BLOCKING );
   Link const * const tun0 = table.link( "tun0" );
   ASSERT_TRUE( tun0 );
   EXPECT_FALSE( tun0->ethernet || tun0->up || tun0->portState );

   announce( { 2, "eth0", 9000 } ); // nothing new
   EXPECT_EQ( changes(), "" );
   announce( { 2, "eth0", 1400, IFF_UP } );
   EXPECT_EQ( changes(), "eth0+" );
   EXPECT_EQ( table.link( "eth0" )->mtu, 1400u );
   EXPECT_FALSE( table.link( "eth0" )->up );
   EXPECT_EQ( table.link( "eth0" )->portState, BR_STATE_BLOCKING );
}

TEST_F( LinuxLinkTable, aPortThatLeavesItsBridgeIsStillALink ) {
   dump( { { 2, "eth0" } } );
   announce( RTM_NEWLINK, portBody( { 2, "eth0" }, BR_STATE_FORWARDING ) );
   announce( RTM_NEWLINK, linkBody( AF_BRIDGE, { 2, "eth0" } ) ); // says nothing of a port
   EXPECT_EQ( table.link( "eth0" )->portState, BR_STATE_FORWARDING );
   announce( RTM_DELLINK, linkBody( AF_BRIDGE, { 2, "eth0" } ) );
   ASSERT_TRUE( table.link( "eth0" ) );
   EXPECT_FALSE( table.link( "eth0" )->portState );

   // The same learnt from a dump.
   announce( RTM_NEWLINK, portBody( { 2, "eth0" }, BR_STATE_FORWARDING ) );
   dump( { { 2, "eth0" } } );
   ASSERT_TRUE( table.link( "eth0" ) );
   EXPECT_FALSE( table.link( "eth0" )->portState );
   announce( RTM_NEWLINK, portBody( { 9, "eth9" }, BR_STATE_FORWARDING ) ); // of no link
   EXPECT_FALSE( table.link( "eth9" ) );
}

TEST_F( LinuxLinkTable, aLinkGoesUnderTheOldNameAndComesUnderTheNew ) {
   dump( { { 2, "eth0" }, { 3, "eth1" } } );
   changes();
   announce( { 2, "lan0" } );
   EXPECT_EQ( changes(), "eth0- lan0+" );
   announce( { 7, "eth1" } ); // the departure of 3 has been lost
   EXPECT_EQ( changes(), "eth1- eth1+" );
   announce( { 2, "eth1" } );
   EXPECT_EQ( changes(), "eth1- lan0- eth1+" );
   EXPECT_EQ( table.link( "eth1" )->index, 2 );
   announce( RTM_DELLINK, linkBody( { 7, "eth1" } ) ); // no link of ours any more
   EXPECT_EQ( changes(), "" );
}

TEST_F( LinuxLinkTable, whatADumpDoesNotMentionHasGone ) {
   dump( { { 2, "eth0" }, { 3, "eth1" } } );
   changes();
   table.doDump();
   answer( RTM_NEWLINK, linkBody( { 3, "eth1" } ) );
   announce( { 4, "eth2" } ); // comes meanwhile
   done();
   done();
   EXPECT_EQ( changes(), "eth2+ eth0-" );
}

TEST_F( LinuxLinkTable, aTornDumpIsAskedForAgainAndDeletesNothing ) {
   dump( { { 2, "eth0" } } );
   changes();
   auto const asks = asked.size();
   auto const expectAsked = [&]( std::size_t times ) {
      ASSERT_EQ( asked.size(), asks + times );
      EXPECT_EQ( asked.back().family, AF_UNSPEC );
   };
   table.doDump();
   answer( RTM_NEWLINK, linkBody( { 3, "eth1" } ), NLM_F_MULTI | NLM_F_DUMP_INTR );
   done();
   expectAsked( 2 );
   // Announcements lost while it runs: once more, and not two at a time.
   table.doDump();
   table.doDump();
   expectAsked( 2 );
   done();
   expectAsked( 3 );
   EXPECT_EQ( changes(), "eth1+" );
   // The mark may also stand on the end alone, and in the second half.
   answer( RTM_NEWLINK, linkBody( { 2, "eth0" } ) );
   answer( RTM_NEWLINK, linkBody( { 3, "eth1" } ) );
   done();
   done( NLM_F_MULTI | NLM_F_DUMP_INTR );
   expectAsked( 5 );
   EXPECT_TRUE( table.isDumping() );
}

TEST_F( LinuxLinkTable, answersUnderAnotherNumberAreNotLookedAt ) {
   dump( { { 2, "eth0" } } );
   changes();
   U32 const old = asked.back().sequence;
   auto const comes = [&]( U16 type, Bytes const & body, U32 sequence, U32 port ) {
      table.handleDatagram( message( type, body, NLM_F_MULTI, sequence, port ) );
   };
   comes( RTM_NEWLINK, linkBody( { 3, "eth1" } ), old, ownPort );
   table.doDump();
   comes( RTM_NEWLINK, linkBody( { 4, "eth2" } ), old, ownPort );
   comes( NLMSG_DONE, bytesOf( 0 ), old, ownPort );
   comes( NLMSG_DONE, bytesOf( 0 ), asked.back().sequence, otherPort ); // of another socket
   EXPECT_EQ( changes(), "" );
   EXPECT_TRUE( table.isDumping() );
}

TEST_F( LinuxLinkTable, aDumpThatFailsLeavesWhatIsKnown ) {
   dump( { { 2, "eth0" } } );
   changes();
   table.doDump();
   answer( NLMSG_ERROR, bytesOf( nlmsgerr{ -EBUSY, {} } ) );
   done(); // of the ports
   EXPECT_FALSE( table.isDumping() );
   table.doDump();
   answer( NLMSG_DONE, bytesOf( -ENOMEM ) );
   done();
   refuses = true;
   table.doDump();
   EXPECT_FALSE( table.isDumping() );
   EXPECT_EQ( changes(), "" );
}

TEST_F( LinuxLinkTable, whatIsNotSoundIsLeftOut ) {
   dump( { { 2, "eth0" } } );
   changes();
   std::size_t const head = sizeof( nlmsghdr ) + sizeof( ifinfomsg );
   auto changedAt = [&]( std::size_t at, U8 value ) {
      Bytes bytes = message( RTM_NEWLINK, linkBody( { 3, "eth1" } ) );
      bytes[at] = value;
      return bytes;
   };
   for ( Bytes const & bytes : {
            Bytes(),
            Bytes( 15 ),                                       // not even a header
            Bytes( 64 ),                                       // lengths of 0
            changedAt( 0, 15 ),                                // a length below the header's
            changedAt( 1, 1 ),                                 // above the datagram's
            message( RTM_NEWLINK, Bytes( 15 ) ),               // half a link
            changedAt( head, 3 ),                              // an attribute below its header
            changedAt( head + 1, 1 ),                          // above the message
            message( RTM_NEWLINK, bytesOf( ifinfomsg{} ) ),    // no name
            message( RTM_NEWADDR, linkBody( { 3, "eth1" } ) ), // of something else
            message( RTM_NEWLINK, linkBody( AF_INET6, { 3, "eth1" } ) ), // of another family
         } ) {
      table.handleDatagram( bytes );
      EXPECT_EQ( changes(), "" );
   }
   // Values of a wrong length say nothing, and hide nothing behind them.
   ifinfomsg info{};
   info.ifi_index = 2;
   Bytes body = bytesOf( info );
   append( body, attribute( IFLA_MTU, { 1, 2, 3 } ) );
   append( body, attribute( IFLA_ADDRESS, Bytes( 20 ) ) );
   append( body, attribute( IFLA_PROTINFO, { 1 } ) );
   append( body, attribute( IFLA_IFNAME, { 'e', 't', 'h', '0' } ) ); // with no end of its own
   announce( RTM_NEWLINK, body );
   EXPECT_FALSE( table.link( "eth0" )->up );
   EXPECT_EQ( table.link( "eth0" )->mtu, 1500u );
   EXPECT_EQ( table.link( "eth0" )->addr, Pelk::EthAddr( 2, 0, 0, 0, 0, 2 ) );
}

} // namespace
} // namespace Linux
