#include "mrp/platform/linux/InterfaceProblem.h"

#include "mrp/platform/linux/PacketSocket.h"

#include <net/if.h>

namespace Linux {

InterfaceProblem interfaceProblem( Pelk::IntfId const & intfId ) {
   unsigned const index = ::if_nametoindex( intfId.stringValue().c_str() );
   if ( index == 0 ) {
      return { InterfaceProblem::Kind::noSuchInterface, "no such interface" };
   }
   // Nothing passes: it is only a try.
   static constexpr Pelk::SockFilterInstruction rejectAll{ 0x06, 0, 0, 0 };
   KernelNetInfo::PamSettings settings;
   settings.filterProgram = { 1, &rejectAll };
   InterfaceProblem problem;
   PacketSocket::open( static_cast< int >( index ), settings, problem );
   return problem;
}

} // namespace Linux
