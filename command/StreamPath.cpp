#include "command/StreamPath.h"

#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"

#include <cstdlib>
#include <unistd.h>

namespace Command {

std::string defaultStreamFolder() {
   if ( ::geteuid() == 0 ) {
      return "/run/mrp";
   }
   char const * const own = std::getenv( "XDG_RUNTIME_DIR" );
   // One that is not absolute counts as none, by the rules of that variable.
   return own && *own == '/' ? std::string( own ) + "/mrp" : "";
}

std::string defaultStreamAddress( Mrp::MrpApplication application ) {
   std::string const folder = defaultStreamFolder();
   char const * const name = application == Mrp::MVRP ? "/mvrp.sock" : "/msrp.sock";
   return folder.empty() ? "" : folder + name;
}

Linux::StreamAddress streamAddressArgument( std::string const & text ) {
   // A path has a '/', or at least nothing that looks like a misspelt kind of address.
   bool const isPath =
      text.find( '/' ) != text.npos || ( !text.empty() && text.find( ':' ) == text.npos );
   if ( isPath && !text.starts_with( "unix:" ) && !text.starts_with( "tcp:" ) ) {
      Linux::StreamAddress address;
      address.path = text;
      return address;
   }
   try {
      auto address = Linux::StreamAddress::fromText( text );
      if ( address.isUnix || address.port != 0 ) {
         return address;
      }
   } catch ( Korv::RangeException const & ) { // said below
   }
   throw CommandError( "'" + text +
                       "' is no address of a stream: a path, unix:PATH, tcp:PORT, tcp:HOST:PORT" );
}

} // namespace Command
