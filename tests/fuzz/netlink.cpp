// What the kernel says of links, as it never would: any bytes as datagrams, or behind the header of
// a sound message, in any order. Whatever comes, a link stands under its own name, and no two have
// one index.
#include "mrp/platform/linux/LinkTable.h"

#include "tests/fuzz/script/Check.h"
#include "tests/fuzz/script/Input.h"

#include <cstring>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <map>
#include <net/if.h>
#include <net/if_arp.h>
#include <set>

namespace {

using namespace Fuzz;
using namespace TestSupport;

constexpr U32 ownPort = 77;

// With a proper header, and any bytes for its attributes.
Bytes message( Input & input, U32 sequence ) {
   constexpr U16 types[] = { RTM_NEWLINK, RTM_NEWLINK, RTM_DELLINK,
                             NLMSG_DONE,  NLMSG_ERROR, RTM_NEWADDR };
   U8 const flags = input.byte();
   struct {
      nlmsghdr header{};
      ifinfomsg link{};
   } start;
   start.header.nlmsg_type = types[input.byte() % std::size( types )];
   start.header.nlmsg_flags =
      static_cast< U16 >( ( flags & 1 ? NLM_F_MULTI : 0 ) | ( flags & 2 ? NLM_F_DUMP_INTR : 0 ) );
   start.header.nlmsg_pid = flags & 4 ? 0 : ownPort;
   start.header.nlmsg_seq = sequence - ( flags & 8 ? 1u : 0u );
   start.link.ifi_family = flags & 16 ? AF_BRIDGE : AF_UNSPEC;
   start.link.ifi_type = ARPHRD_ETHER;
   start.link.ifi_index = input.byte() % 6;
   start.link.ifi_flags = flags & 32 ? IFF_UP : 0;
   Bytes const attributes = input.bytes( input.byte() );
   start.header.nlmsg_len = static_cast< U32 >( sizeof start + attributes.size() );
   Bytes bytes( sizeof start );
   std::memcpy( bytes.data(), &start, sizeof start );
   put( bytes, attributes );
   return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Input input( { data, size } );
   U32 asked = 0;
   std::set< std::string > names;
   Linux::LinkTable table(
      ownPort,
      [&]( U8, U32 sequence ) {
         asked = sequence;
         return input.byte() != 0;
      },
      [&]( std::string const & name ) { names.insert( name ); } );
   while ( !input.empty() ) {
      switch ( input.byte() % 8 ) {
      case 0: table.doDump(); break;
      case 1: table.handleDatagram( input.bytes( input.byte() ) ); break;
      default: table.handleDatagram( message( input, asked ) ); break;
      }
      std::map< int, std::string > byIndex;
      for ( std::string const & name : names ) {
         if ( auto const * const link = table.link( name ) ) {
            check( link->name == name, "a link stands under its name", name );
            check( byIndex.emplace( link->index, name ).second, "an index is one link's", name );
         }
      }
   }
   return 0;
}
