// Where a byte stream is offered, and its sockets: Unix-domain, or TCP over IPv4. None of them
// waits for another end.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/linux/Descriptor.h"

#include <string>
#include <string_view>

namespace Linux {

struct StreamAddress {
   // "unix:PATH", "tcp:PORT" (loopback) or "tcp:HOST:PORT". Throws Korv::RangeException for
   // anything else. Path and host are looked at when a socket is made.
   static StreamAddress fromText( std::string_view text );
   std::string text() const;

   bool isUnix = true;
   std::string path;
   std::string host = "127.0.0.1"; // in digits
   Korv::U16 port = 0;             // 0: any that is free
};

// These throw std::system_error, and Korv::RangeException for a path that is too long or a host
// that is no IPv4 address. A path belongs to its user alone (0600); one that a dead process has
// left behind is taken over.
Descriptor listeningSocket( StreamAddress const & address );
// Still connecting, possibly: it is writable when that has been decided, over TCP within seconds.
// Over TCP either end of a connection hears within half a minute that the other's machine is gone.
Descriptor connectingSocket( StreamAddress const & address );
// The next connection of a listening socket; none if there is none, with errno.
Descriptor acceptedSocket( Descriptor const & listening );
// The port that was found for a TCP address of port 0.
Korv::U16 listeningPort( Descriptor const & listening );
// Which file stands at a path; all 0 if there is none. As long as a listening socket is open no
// other can be taken for its own.
struct SocketFile {
   Korv::U64 device = 0;
   Korv::U64 inode = 0;
   bool operator==( SocketFile const & ) const = default;
};
SocketFile socketFile( std::string const & path );
// What has been sent and not been taken at the other end, and what there is room for, as the kernel
// counts them: on TCP the bytes, on a Unix-domain socket the memory that they take up. Negative
// where that cannot be told.
Korv::S32 unsentBytes( Descriptor const & socket );
Korv::S32 sendBufferBytes( Descriptor const & socket );
// What became of connecting: 0 or an error number.
int socketError( Descriptor const & socket );

} // namespace Linux
