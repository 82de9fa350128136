// A socket of the kernel's packet family, on one interface.
#pragma once

#include "mrp/platform/kernel/PamSettings.h"
#include "mrp/platform/linux/Descriptor.h"
#include "mrp/platform/linux/InterfaceProblem.h"

#include <span>

namespace Linux {

using FrameBytes = std::span< Korv::U8 const >;

// Sees the frames of the interface that its filter passes, as they were on the wire, and sends
// frames there. It never waits. It takes CAP_NET_RAW to open one.
//
//  1. The filter is on before the socket is bound, so that nothing that it rejects ever waits.
//  2. It is bound to all protocols. On a port of a Linux bridge a socket bound to one EtherType
//     does not see frames to 01:80:C2:00:00:21, and loses those with a priority tag.
//  3. What this host sends it does not see, its own frames and others'.
class PacketSocket {
 public:
   // One on the interface of this number, or the reason why not.
   static PacketSocket open( int index, KernelNetInfo::PamSettings const & settings,
                             InterfaceProblem & problem );

   int descriptor() const { return descriptor_.number(); }
   explicit operator bool() const { return static_cast< bool >( descriptor_ ); }

   // Whether a frame waits.
   bool hasFrame() const;

   enum class Outcome : Korv::U8 {
      nothing, // none waits
      frame,
      ours,    // sent by this host: not for the reader
      tooLong, // not to be had as a whole, and dropped: half of an MRPDU would be read as another
      error,   // the link has gone down, or the interface has gone
   };
   struct Received {
      Outcome outcome;
      FrameBytes frame; // good until the next receive of any socket
   };
   // Takes the next frame out, with its VLAN tag back in its place.
   Received receive();

   // 0, or the error for which the frame did not leave. `parts` are its bytes in order.
   int send( std::span< FrameBytes const > parts );

   // Takes the pending error out of the socket; 0 for none.
   int takeError();
   // Frames lost because too many waited, since the last call.
   Korv::U32 takeOverrun() const;

   // The longest frame there is any use for: above every MTU of Ethernet, jumbo frames included.
   static constexpr std::size_t frameBytesMax = 16'384;

 private:
   explicit PacketSocket( Descriptor descriptor ) : descriptor_( std::move( descriptor ) ) {}
   InterfaceProblem setUp( int index, KernelNetInfo::PamSettings const & settings );
   template < class Value >
   bool optionIs( int level, int option, Value const & value );

   Descriptor descriptor_;
};

} // namespace Linux
