#include "mrp/platform/linux/StreamSocket.h"

#include "mrp/platform/korv/RangeException.h"

#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Linux {

namespace {

struct SocketAddress {
   explicit SocketAddress( StreamAddress const & address ) {
      if ( address.isUnix ) {
         sockaddr_un un{};
         un.sun_family = AF_UNIX;
         if ( address.path.empty() || address.path.size() >= sizeof un.sun_path ) {
            Korv::throwRangeException( "a socket's path has 1 to 107 characters" );
         }
         std::memcpy( un.sun_path, address.path.data(), address.path.size() );
         std::memcpy( &storage, &un, sizeof un );
         size = sizeof un;
      } else {
         sockaddr_in in{};
         in.sin_family = AF_INET;
         in.sin_port = htons( address.port );
         if ( ::inet_pton( AF_INET, address.host.c_str(), &in.sin_addr ) != 1 ) {
            Korv::throwRangeException( "'" + address.host + "' is no IPv4 address" );
         }
         std::memcpy( &storage, &in, sizeof in );
         size = sizeof in;
      }
   }
   sockaddr const * get() const { return reinterpret_cast< sockaddr const * >( &storage ); }
   sockaddr_storage storage{};
   socklen_t size;
};

Descriptor newSocket( SocketAddress const & address ) {
   Descriptor made(
      ::socket( address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0 ) );
   if ( !made ) {
      throwErrno( "cannot make a socket" );
   }
   return made;
}

// What a connection is given over TCP. On a Unix-domain socket these fail, and nothing is missed.
constexpr struct {
   int level;
   int name;
   int value;
} connectionOptions[] = {
   { IPPROTO_TCP, TCP_NODELAY, 1 },
   { IPPROTO_TCP, TCP_SYNCNT, 2 }, // connecting is given up after seven seconds
   // An end that says nothing for ten seconds is asked whether it is there, three times.
   { SOL_SOCKET, SO_KEEPALIVE, 1 },
   { IPPROTO_TCP, TCP_KEEPIDLE, 10 },
   { IPPROTO_TCP, TCP_KEEPINTVL, 5 },
   { IPPROTO_TCP, TCP_KEEPCNT, 3 },
   { IPPROTO_TCP, TCP_USER_TIMEOUT, 25'000 }, // nor does what is sent stay unconfirmed for longer
};
void setConnectionOptions( Descriptor const & socket ) {
   for ( auto const & [level, name, value] : connectionOptions ) {
      ::setsockopt( socket.number(), level, name, &value, sizeof value );
   }
}

// A socket at which nobody accepts any more. A file of another kind would refuse to be connected to
// just the same.
bool isAbandoned( StreamAddress const & where, SocketAddress const & address ) {
   struct stat status {};
   if ( ::lstat( where.path.c_str(), &status ) != 0 || !S_ISSOCK( status.st_mode ) ) {
      return false;
   }
   Descriptor const probe = newSocket( address );
   return ::connect( probe.number(), address.get(), address.size ) != 0 && errno == ECONNREFUSED;
}

// Held while a path is looked at and taken: of two that begin together, one would find the other's
// socket bound, not listening yet, and take it for abandoned. A lock on the path's folder, which
// leaves nothing behind; where it cannot be had before long, it goes without.
Descriptor pathLock( std::string const & path ) {
   auto const slash = path.rfind( '/' );
   std::string const folder = slash == path.npos ? "." : path.substr( 0, slash + 1 );
   Descriptor lock( ::open( folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC ) );
   constexpr timespec pause{ 0, 1'000'000 };
   for ( int tries = 100;
         tries > 0 && ::flock( lock.number(), LOCK_EX | LOCK_NB ) != 0 && errno == EWOULDBLOCK;
         --tries ) {
      ::nanosleep( &pause, nullptr );
   }
   return lock;
}

} // namespace

StreamAddress StreamAddress::fromText( std::string_view text ) {
   StreamAddress address;
   if ( text.starts_with( "unix:" ) && text.size() > 5 ) {
      address.path = text.substr( 5 );
      return address;
   }
   if ( text.starts_with( "tcp:" ) ) {
      address.isUnix = false;
      auto rest = text.substr( 4 );
      if ( auto const colon = rest.rfind( ':' ); colon != rest.npos ) {
         address.host = rest.substr( 0, colon );
         rest = rest.substr( colon + 1 );
      }
      auto const end = rest.data() + rest.size();
      auto const [at, error] = std::from_chars( rest.data(), end, address.port );
      if ( error == std::errc() && at == end && !rest.empty() ) {
         return address;
      }
   }
   Korv::throwRangeException( "'" + std::string( text ) +
                              "' is neither unix:PATH nor tcp:PORT nor tcp:HOST:PORT" );
}

std::string StreamAddress::text() const {
   return isUnix ? "unix:" + path : "tcp:" + host + ':' + std::to_string( port );
}

Descriptor listeningSocket( StreamAddress const & address ) {
   SocketAddress const at( address );
   Descriptor made = newSocket( at );
   int const on = 1;
   ::setsockopt( made.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on );
   Descriptor const lock = address.isUnix ? pathLock( address.path ) : Descriptor();
   if ( address.isUnix ) {
      // The mode of the path from its first moment on: what binds takes it from the socket.
      ::fchmod( made.number(), S_IRUSR | S_IWUSR );
   }
   int result = ::bind( made.number(), at.get(), at.size );
   if ( result != 0 && errno == EADDRINUSE && address.isUnix ) {
      if ( isAbandoned( address, at ) ) {
         ::unlink( address.path.c_str() );
         result = ::bind( made.number(), at.get(), at.size );
      } else {
         errno = EADDRINUSE; // whatever the look at it has left there
      }
   }
   if ( result != 0 || ::listen( made.number(), 16 ) != 0 ) {
      throwErrno( "cannot listen" );
   }
   return made;
}

Descriptor connectingSocket( StreamAddress const & address ) {
   SocketAddress const at( address );
   Descriptor made = newSocket( at );
   setConnectionOptions( made );
   if ( ::connect( made.number(), at.get(), at.size ) != 0 && errno != EINPROGRESS ) {
      throwErrno( "cannot connect" );
   }
   return made;
}

Descriptor acceptedSocket( Descriptor const & listening ) {
   Descriptor accepted(
      ::accept4( listening.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC ) );
   if ( accepted ) {
      setConnectionOptions( accepted );
   }
   return accepted;
}

Korv::U16 listeningPort( Descriptor const & listening ) {
   sockaddr_in in{};
   socklen_t size = sizeof in;
   ::getsockname( listening.number(), reinterpret_cast< sockaddr * >( &in ), &size );
   return ntohs( in.sin_port );
}

SocketFile socketFile( std::string const & path ) {
   struct stat status {};
   if ( ::lstat( path.c_str(), &status ) != 0 ) {
      return {};
   }
   return { status.st_dev, status.st_ino };
}

Korv::S32 unsentBytes( Descriptor const & socket ) {
   int unsent = 0;
   return ::ioctl( socket.number(), TIOCOUTQ, &unsent ) == 0 ? unsent : -1;
}

Korv::S32 sendBufferBytes( Descriptor const & socket ) {
   int bytes = 0;
   socklen_t size = sizeof bytes;
   return ::getsockopt( socket.number(), SOL_SOCKET, SO_SNDBUF, &bytes, &size ) == 0 ? bytes : -1;
}

int socketError( Descriptor const & socket ) {
   int error = 0;
   socklen_t size = sizeof error;
   return ::getsockopt( socket.number(), SOL_SOCKET, SO_ERROR, &error, &size ) == 0 ? error : errno;
}

} // namespace Linux
