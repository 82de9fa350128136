#include "mrp/platform/linux/AttrLogServer.h"

#include <algorithm>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace Linux {

namespace {

// So much is handed to the kernel at once, from within a notification: a commit of thousands of
// attributes then sees the socket fill while it goes on.
constexpr std::size_t chunk = 16 * 1024;

constexpr Seconds retryDelay = 1;

} // namespace

// One connection. The members' order matters: adapters go before the output, the watch before the
// descriptor.
class AttrLogServer::Observer : public Korv::NboAttrLog::Output {
 public:
   Observer( AttrLogServer & server, Descriptor socket )
      : Output( server.options_.bound ), socket_( std::move( socket ) ),
        watch_( server.activity_, socket_.number(), DescriptorWatch::reading,
                [this, &server]( Korv::U32 ready ) { server.handleObserver( *this, ready ); } ) {}

   void mountIs( Mount const & mount ) {
      {
         Turn const turn( *this );
         adapters_ = mount( *this );
      }
      send();
   }
   int fd() const { return socket_.number(); }

   // Whatever the peer says is out of place, its end included.
   bool peerIsSilent() const {
      char byte;
      return ::recv( fd(), &byte, 1, MSG_DONTWAIT ) < 0 && ( errno == EAGAIN || errno == EINTR );
   }
   // As much as the kernel takes. A connection that is broken ends from the loop, which hears of
   // it.
   void send() {
      while ( bytes() > 0 && !failed() ) {
         auto const waiting = front();
         auto const sent =
            ::send( fd(), waiting.data(), waiting.size(), MSG_DONTWAIT | MSG_NOSIGNAL );
         if ( sent <= 0 ) {
            broken_ = sent < 0 && errno != EAGAIN && errno != EINTR;
            break;
         }
         frontDel( static_cast< std::size_t >( sent ) );
      }
      awaitRoom();
   }
   bool broken() const { return broken_ || failed(); }
   // Woken when the socket takes more, for as long as there is more.
   void awaitRoom() {
      bool const more = !idle() || broken();
      watch_.eventsIs( DescriptorWatch::reading | ( more ? DescriptorWatch::writing : 0u ) );
   }

 protected:
   void handleBytes() override {
      if ( bytes() >= chunk && !broken_ ) {
         send();
      } else {
         awaitRoom();
      }
   }

   // The loop hears of it, and ends the connection.
   void handleFailed() noexcept override { ::shutdown( fd(), SHUT_RDWR ); }

 private:
   Descriptor socket_;
   DescriptorWatch watch_;
   bool broken_ = false;
   std::vector< std::unique_ptr< Korv::NboAttrLog::Adapter > > adapters_;
};

AttrLogServer::AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount,
                              Options const & options )
   : activity_( activity ), address_( address ), mount_( std::move( mount ) ), options_( options ),
     listening_( listeningSocket( address ) ) {
   if ( !address_.isUnix ) {
      address_.port = listeningPort( listening_ );
   }
   listenWatch_ =
      std::make_unique< DescriptorWatch >( activity_, listening_.number(), DescriptorWatch::reading,
                                           [this]( Korv::U32 ) { handleAccept(); } );
}

AttrLogServer::~AttrLogServer() {
   socketOut_->sockFdIs( -1 );
   if ( address_.isUnix ) {
      ::unlink( address_.path.c_str() );
   }
}

bool AttrLogServer::idle() const {
   for ( auto const & observer : observers_ ) {
      if ( !observer->idle() ) {
         return false;
      }
   }
   return true;
}

void AttrLogServer::handleAccept() {
   Descriptor socket = acceptedSocket( listening_ );
   if ( !socket ) {
      if ( errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM ) {
         listenWatch_->eventsIs( 0 );
         retry_.timeMinIs( Korv::now() + retryDelay );
      }
      return;
   }
   if ( observers_.size() >= options_.maxObservers ) {
      return;
   }
   if ( options_.sendBuffer > 0 ) {
      ::setsockopt( socket.number(), SOL_SOCKET, SO_SNDBUF, &options_.sendBuffer,
                    sizeof options_.sendBuffer );
   }
   observers_.push_back( std::make_unique< Observer >( *this, std::move( socket ) ) );
   Observer & observer = *observers_.back();
   try {
      observer.mountIs( mount_ );
      socketOut_->sockFdIs( observers_.front()->fd() );
   } catch ( ... ) {
      observerDel( observer );
   }
}

void AttrLogServer::handleObserver( Observer & observer, Korv::U32 ready ) {
   try {
      if ( ( ready & DescriptorWatch::failure ) || observer.broken() ||
           ( ( ready & DescriptorWatch::reading ) && !observer.peerIsSilent() ) ) {
         return observerDel( observer );
      }
      observer.send();
      observer.doFlowOut();
      observer.awaitRoom();
   } catch ( ... ) {
      observerDel( observer );
   }
}

void AttrLogServer::observerDel( Observer & observer ) {
   auto const at = std::find_if( observers_.begin(), observers_.end(),
                                 [&]( auto const & o ) { return o.get() == &observer; } );
   std::unique_ptr< Observer > const leaving = std::move( *at );
   observers_.erase( at );
   socketOut_->sockFdIs( observers_.empty() ? -1 : observers_.front()->fd() );
}

} // namespace Linux
