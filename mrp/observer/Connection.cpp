#include "mrp/observer/Connection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <system_error>

namespace MrpObserver {

using Linux::DescriptorWatch;

Connection::Connection( Linux::RealActivity & activity, Linux::StreamAddress address,
                        Mirror & mirror )
   : activity_( activity ), address_( std::move( address ) ), mirror_( mirror ) {
   connect();
}

Connection::~Connection() { mirror_.streamEnds(); }

void Connection::connect() {
   try {
      socket_ = Linux::connectingSocket( address_ );
      watch_.emplace( activity_, socket_.number(), DescriptorWatch::writing,
                      [this]( Korv::U32 ready ) { handleReady( ready ); } );
      connecting_ = true;
   } catch ( std::system_error const & error ) {
      handleEnd( error.what() );
   }
}

void Connection::readingIs( bool reading ) {
   reading_ = reading;
   if ( watch_ && !connecting_ ) {
      watch_->eventsIs( reading ? DescriptorWatch::reading : 0u );
   }
}

void Connection::handleReady( Korv::U32 ready ) {
   if ( connecting_ ) {
      if ( int const error = Linux::socketError( socket_ ) ) {
         return handleEnd( std::strerror( error ) );
      }
      connecting_ = false;
      mirror_.streamBegins();
      return readingIs( reading_ );
   }
   if ( !reading_ ) {
      return ( ready & DescriptorWatch::failure ) ? handleEnd( "the stream has ended" ) : void();
   }
   std::array< Korv::U8, 64 * 1024 > bytes;
   auto const got = ::recv( socket_.number(), bytes.data(), bytes.size(), MSG_DONTWAIT );
   if ( got < 0 && ( errno == EAGAIN || errno == EINTR ) ) {
      return;
   }
   if ( got <= 0 ) {
      return handleEnd( got == 0 ? "the stream has ended" : std::strerror( errno ) );
   }
   streams_ += connected_ ? 0 : 1;
   connected_ = true;
   try {
      mirror_.handleBytes( std::span( bytes ).first( static_cast< std::size_t >( got ) ) );
   } catch ( StreamError const & error ) {
      return handleEnd( error.what() );
   } catch ( ... ) { // thrown by a watcher: the mirror's stream has ended, and the loop hears of it
      handleEnd( "what has arrived could not be applied" );
      throw;
   }
   // A stream that has made sense once may be tried again soon.
   delay_ = mirror_.messages() > 0 ? firstDelay : delay_;
}

void Connection::handleEnd( std::string const & error ) {
   lastError_ = error;
   connected_ = false;
   connecting_ = false;
   watch_.reset();
   socket_ = Linux::Descriptor();
   mirror_.streamEnds();
   retry_.doRunIn( delay_ );
   delay_ = std::min( 2 * delay_, longestDelay );
}

} // namespace MrpObserver
