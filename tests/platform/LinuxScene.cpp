#include "tests/platform/LinuxScene.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Linux {

namespace {

bool write( char const * file, std::string const & text ) {
   std::ofstream out( file );
   return static_cast< bool >( out << text << std::flush );
}

// What is missing for a namespace of one's own; empty for nothing.
std::string enterNamespace() {
   if ( ::unshare( CLONE_NEWNET ) == 0 ) {
      return {};
   }
   std::string const user = std::to_string( ::geteuid() ), group = std::to_string( ::getegid() );
   if ( ::unshare( CLONE_NEWUSER | CLONE_NEWNET ) != 0 ||
        !write( "/proc/self/setgroups", "deny" ) ||
        !write( "/proc/self/uid_map", "0 " + user + " 1" ) ||
        !write( "/proc/self/gid_map", "0 " + group + " 1" ) ) {
      return "no network namespaces here (it takes root, or user namespaces)";
   }
   return {};
}

} // namespace

Frame numberedFrame( Korv::U8 number, Frame const & tag ) {
   Frame frame{ 0x01, 0x80, 0xc2, 0, 0, 0x21, 2, 0, 0, 0, 0, 9 };
   frame.insert( frame.end(), tag.begin(), tag.end() );
   frame.insert( frame.end(), { 0x88, 0xf5 } );
   frame.resize( numberAt + tag.size() );
   frame.push_back( number );
   return frame;
}

KernelNetInfo::PamSettings mvrpSettings() {
   static constexpr Pelk::SockFilterInstruction filter[] = {
      { 0x20, 0, 0, 2 },      { 0x15, 0, 8, 0xc2000021 }, { 0x28, 0, 0, 0 },
      { 0x15, 0, 6, 0x0180 }, { 0x28, 0, 0, 12 },         { 0x15, 3, 0, 0x88f5 },
      { 0x15, 0, 3, 0x8100 }, { 0x28, 0, 0, 16 },         { 0x15, 0, 1, 0x88f5 },
      { 0x06, 0, 0, 0xffff }, { 0x06, 0, 0, 0 } };
   KernelNetInfo::PamSettings settings;
   settings.filterProgram = { std::size( filter ), filter };
   settings.destination = Pelk::EthAddr( "01:80:c2:00:00:21" );
   settings.perIntfSocket = true;
   settings.txRetries = 3;
   settings.rxQueueFrames = 10'000;
   return settings;
}

Wire::Wire( std::string const & interface )
   : socket_( ::socket( AF_PACKET, SOCK_RAW | SOCK_NONBLOCK, htons( ETH_P_ALL ) ) ) {
   sockaddr_ll addr{};
   addr.sll_family = AF_PACKET;
   addr.sll_protocol = htons( ETH_P_ALL );
   addr.sll_ifindex = static_cast< int >( ::if_nametoindex( interface.c_str() ) );
   EXPECT_EQ( ::bind( socket_.number(), reinterpret_cast< sockaddr * >( &addr ), sizeof addr ), 0 )
      << interface;
}

void Wire::send( Frame const & frame ) const {
   EXPECT_EQ( ::send( socket_.number(), frame.data(), frame.size(), 0 ),
              static_cast< ssize_t >( frame.size() ) );
}

std::vector< Frame > Wire::heard() const {
   std::vector< Frame > frames;
   std::array< Korv::U8, 2'048 > bytes;
   sockaddr_ll from{};
   socklen_t length = sizeof from;
   for ( ;; ) {
      ssize_t const size = ::recvfrom( socket_.number(), bytes.data(), bytes.size(), 0,
                                       reinterpret_cast< sockaddr * >( &from ), &length );
      if ( size < 0 ) {
         return frames;
      }
      if ( from.sll_protocol == htons( 0x88f5 ) && from.sll_pkttype != PACKET_OUTGOING ) {
         frames.emplace_back( bytes.begin(), bytes.begin() + size );
      }
   }
}

void Scene::SetUp() {
   if ( auto const missing = enterNamespace(); !missing.empty() ) {
      GTEST_SKIP() << missing;
   }
   if ( std::system( "ip link add name va type veth peer name vb 2> /dev/null" ) != 0 ) {
      GTEST_SKIP() << "no veth pairs here (it takes iproute2 and the kernel's veth)";
   }
   run( "ip link set va up && ip link set vb up" );
}

void Scene::run( std::string const & command ) {
   EXPECT_EQ( std::system( command.c_str() ), 0 ) << command;
}

bool Scene::runUntil( std::function< bool() > const & holds ) {
   // Not until a time: it passes while a starved machine does nothing for us.
   for ( int turns = 5'000; turns > 0 && !holds(); --turns ) {
      activity.runFor( 0.002 );
   }
   return holds();
}

} // namespace Linux
