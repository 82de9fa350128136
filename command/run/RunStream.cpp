#include "command/run/RunStream.h"

#include "command/CommandError.h"
#include "command/StreamPath.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <system_error>

namespace Command {

namespace {

// The usual place, with the folder there.
Linux::StreamAddress usualAddress( Mrp::MrpApplication application ) {
   std::string const folder = defaultStreamFolder();
   if ( folder.empty() ) {
      throw CommandError( "XDG_RUNTIME_DIR is not set" );
   }
   constexpr mode_t forItsUserAlone = 0700;
   if ( ::mkdir( folder.c_str(), forItsUserAlone ) != 0 && errno != EEXIST ) {
      throw CommandError( folder + ": " + std::strerror( errno ) );
   }
   return streamAddressArgument( defaultStreamAddress( application ) );
}

std::string problemWords( Linux::StreamAddress const & address, std::exception const & error ) {
   auto const * const system = dynamic_cast< std::system_error const * >( &error );
   bool const isTaken = system && system->code() == std::errc::address_in_use;
   return address.text() + ": " + ( isTaken ? "it is taken" : error.what() );
}

} // namespace

std::unique_ptr< RunStream > RunStream::offered( RunSettings const & settings,
                                                 Linux::RealActivity & activity,
                                                 Korv::Name const & connection,
                                                 Linux::AttrLogServer::Mount mount,
                                                 std::ostream & err ) {
   if ( settings.socket == noSocket ) {
      return nullptr;
   }
   try {
      auto const address = settings.socket ? streamAddressArgument( *settings.socket )
                                           : usualAddress( settings.application );
      try {
         return std::make_unique< RunStream >( activity, address, connection, std::move( mount ) );
      } catch ( std::runtime_error const & error ) {
         throw CommandError( problemWords( address, error ) );
      }
   } catch ( CommandError const & error ) {
      if ( settings.socket ) {
         throw CommandError( std::string( "socket: " ) + error.what() );
      }
      err << "mrp: warning: no mirror stream: " << error.what()
          << " (--socket names another place, or none)\n";
   }
   return nullptr;
}

RunStream::RunStream( Linux::RealActivity & activity, Linux::StreamAddress const & address,
                      Korv::Name connection, Linux::AttrLogServer::Mount mount )
   : connection_( std::move( connection ) ), server_( activity, address, std::move( mount ) ) {
   Korv::NboAttrLog::top().socketOutSmIs( connection_, server_.socketOutSm() );
}

RunStream::~RunStream() { Korv::NboAttrLog::top().socketOutSmDel( connection_ ); }

} // namespace Command
