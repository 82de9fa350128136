// The one file that includes libmicrohttpd. The library waits for nothing itself: its descriptor,
// which is readable when any of its sockets has something, stands among those of the loop.
#include "command/run/MetricsServer.h"

#include <cerrno>
#include <microhttpd.h>
#include <sys/socket.h>
#include <system_error>

namespace Command {

namespace {

constexpr Korv::Seconds patience = 5;
constexpr unsigned mostClients = 8;
constexpr std::size_t memoryOfClient = 16 * 1024; // request and headers

MetricsServer & serverOf( void * pointer ) { return *static_cast< MetricsServer * >( pointer ); }

MHD_Result onRequest( void * server, MHD_Connection * connection, char const * path,
                      char const * method, char const * /* version */, char const * /* upload */,
                      std::size_t * /* uploadBytes */, void ** /* request */ ) {
   try {
      return serverOf( server ).handleRequest( *connection, path, method ) ? MHD_YES : MHD_NO;
   } catch ( ... ) { // out of memory: the connection ends
      return MHD_NO;
   }
}

void onConnection( void * server, MHD_Connection * connection, void ** /* context */,
                   MHD_ConnectionNotificationCode code ) {
   auto const * const info =
      MHD_get_connection_info( connection, MHD_CONNECTION_INFO_CONNECTION_FD );
   if ( code != MHD_CONNECTION_NOTIFY_STARTED ) {
      return serverOf( server ).handleClosed( info->connect_fd );
   }
   try {
      serverOf( server ).handleConnected( info->connect_fd );
   } catch ( ... ) { // out of memory: the connection would have no deadline
      ::shutdown( info->connect_fd, SHUT_RDWR );
   }
}

bool queue( MHD_Connection & connection, unsigned status, std::string const & text,
            char const * type ) {
   // The library copies the text, and does not write to it.
   std::unique_ptr< MHD_Response, decltype( &MHD_destroy_response ) > const response(
      MHD_create_response_from_buffer( text.size(), const_cast< char * >( text.data() ),
                                       MHD_RESPMEM_MUST_COPY ),
      MHD_destroy_response );
   return response &&
          MHD_add_response_header( response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, type ) ==
             MHD_YES &&
          MHD_add_response_header( response.get(), MHD_HTTP_HEADER_CONNECTION, "close" ) ==
             MHD_YES &&
          ( status != MHD_HTTP_METHOD_NOT_ALLOWED ||
            MHD_add_response_header( response.get(), MHD_HTTP_HEADER_ALLOW, "GET, HEAD" ) ==
               MHD_YES ) &&
          MHD_queue_response( &connection, status, response.get() ) == MHD_YES;
}

} // namespace

MetricsServer::Client::Client( int number )
   : socket( number ),
     // The library then finds the socket closed, and ends the connection.
     deadline( Korv::activityManager().clock(), [number] { ::shutdown( number, SHUT_RDWR ); } ) {
   deadline.doRunIn( patience );
}

MetricsServer::MetricsServer( Linux::RealActivity & activity, Linux::StreamAddress const & address,
                              Text text )
   : text_( std::move( text ) ), listening_( Linux::listeningSocket( address ) ) {
   daemon_.reset(
      MHD_start_daemon( MHD_USE_EPOLL, 0, nullptr, nullptr, onRequest, this, // polled by the loop
                        MHD_OPTION_LISTEN_SOCKET, listening_.number(), MHD_OPTION_CONNECTION_LIMIT,
                        mostClients, MHD_OPTION_CONNECTION_MEMORY_LIMIT, memoryOfClient,
                        MHD_OPTION_NOTIFY_CONNECTION, onConnection, this, MHD_OPTION_END ) );
   if ( !daemon_ ) {
      throw std::system_error( errno, std::generic_category(), "cannot serve HTTP" );
   }
   auto const * const info = MHD_get_daemon_info( daemon_.get(), MHD_DAEMON_INFO_EPOLL_FD );
   watch_ = std::make_unique< Linux::DescriptorWatch >(
      activity, info->epoll_fd, Linux::DescriptorWatch::reading, [this]( Korv::U32 ) { work(); } );
}

void MetricsServer::Stop::operator()( MHD_Daemon * daemon ) const {
   MHD_quiesce_daemon( daemon ); // leaves the socket that listens to its owner
   MHD_stop_daemon( daemon );
}

int MetricsServer::handleRequest( MHD_Connection & connection, std::string const & path,
                                  std::string const & method ) const {
   constexpr char const * plain = "text/plain; charset=utf-8";
   if ( path != "/metrics" ) {
      return queue( connection, MHD_HTTP_NOT_FOUND, "The metrics are at /metrics.\n", plain );
   }
   if ( method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD ) {
      return queue( connection, MHD_HTTP_METHOD_NOT_ALLOWED, "The metrics can be got.\n", plain );
   }
   return queue( connection, MHD_HTTP_OK, text_(), "text/plain; version=0.0.4; charset=utf-8" );
}

void MetricsServer::handleConnected( int socket ) { clients_.emplace_back( socket ); }

void MetricsServer::handleClosed( int socket ) {
   ++closed_;
   clients_.remove_if( [socket]( Client const & client ) { return client.socket == socket; } );
}

void MetricsServer::work() {
   std::size_t closed = 0;
   do {
      closed = closed_;
      MHD_run( daemon_.get() );
      // When all places for clients are taken the library stops listening, and begins again only
      // when it is run after one has become free. Nothing else may run it then.
   } while ( closed != closed_ );
   MHD_UNSIGNED_LONG_LONG milliseconds = 0;
   bool const isTimed = MHD_get_timeout( daemon_.get(), &milliseconds ) == MHD_YES;
   due_.timeMinIs( isTimed ? Korv::now() + static_cast< double >( milliseconds ) / 1000
                           : Korv::never );
}

} // namespace Command
