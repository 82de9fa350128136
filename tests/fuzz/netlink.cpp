// What the kernel says of links, as it never would: any bytes as datagrams, and sound messages of
// any content and order. Whatever comes, a link stands under its own name, and no two have one
// index.
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
using Korv::U32;

constexpr U32 ownPort = 77;

template < class T >
void append( Bytes & bytes, T const & what ) {
   auto const * const from = reinterpret_cast< U8 const * >( &what );
   bytes.insert( bytes.end(), from, from + sizeof what );
}

void appendAttribute( Bytes & bytes, Input & input ) {
   constexpr unsigned short types[] = { IFLA_IFNAME,
                                        IFLA_MTU,
                                        IFLA_ADDRESS,
                                        IFLA_PROTINFO,
                                        IFLA_PROTINFO | NLA_F_NESTED,
                                        IFLA_LINKINFO,
                                        IFLA_MASTER,
                                        0 };
   unsigned short const type = types[input.byte() % std::size( types )];
   Bytes const content = input.bytes( input.byte() % 20u );
   append( bytes,
           rtattr{ static_cast< unsigned short >( sizeof( rtattr ) + content.size() ), type } );
   bytes.insert( bytes.end(), content.begin(), content.end() );
   bytes.resize( ( bytes.size() + 3 ) / 4 * 4 );
}

Bytes message( Input & input, U32 sequence ) {
   constexpr unsigned short types[] = { RTM_NEWLINK, RTM_NEWLINK, RTM_DELLINK,
                                        NLMSG_DONE,  NLMSG_ERROR, RTM_NEWADDR };
   U8 const flags = input.byte();
   nlmsghdr header{};
   header.nlmsg_type = types[input.byte() % std::size( types )];
   header.nlmsg_flags = static_cast< unsigned short >( ( flags & 1 ? NLM_F_MULTI : 0 ) |
                                                       ( flags & 2 ? NLM_F_DUMP_INTR : 0 ) );
   header.nlmsg_pid = flags & 4 ? 0 : ownPort;
   header.nlmsg_seq = sequence - ( flags & 8 ? 1u : 0u );
   Bytes bytes;
   append( bytes, header );
   ifinfomsg link{};
   link.ifi_family = flags & 16 ? AF_BRIDGE : AF_UNSPEC;
   link.ifi_type = ARPHRD_ETHER;
   link.ifi_index = input.byte() % 6;
   link.ifi_flags = flags & 32 ? IFF_UP : 0;
   append( bytes, link );
   for ( U32 count = input.byte() % 5u; count > 0; --count ) {
      appendAttribute( bytes, input );
   }
   header.nlmsg_len = static_cast< U32 >( bytes.size() );
   std::memcpy( bytes.data(), &header, sizeof header );
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
