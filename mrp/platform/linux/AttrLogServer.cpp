#include "mrp/platform/linux/AttrLogServer.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>

namespace Linux {

namespace {

// So much is handed to the kernel at once, from within a notification: a commit of thousands of
// attributes then sees the socket fill while it goes on. A Unix-domain socket needs this too, since
// it wakes nobody before three quarters of it are empty, and would never become half full.
constexpr std::size_t largestChunk = 16 * 1024;

constexpr Seconds retryDelay = 1;

// How often it is looked at what the observers have taken.
constexpr Seconds checkDelay = 0.1;

// A tree of hundreds of thousands of adapters is not dropped at once: the engine is waiting.
constexpr std::size_t teardownPiece = 5000;
constexpr Seconds teardownDelay = 0.01;

} // namespace

// One connection. The members' order matters: adapters go before the output, the watch before the
// descriptor.
class AttrLogServer::Observer : public Korv::NboAttrLog::Output {
 public:
   Observer( AttrLogServer & server, Descriptor socket )
      : Output( server.options_.bound ), server_( server ), socket_( std::move( socket ) ),
        chunk_( std::min( server.options_.bound / 2, largestChunk ) ), nextSend_( chunk_ ),
        halfBuffer_( sendBufferBytes( socket_ ) / 2 ), takenAt_( server.now() ) {
      watch_.emplace( server.activity_, fd(), DescriptorWatch::reading,
                      [this]( Korv::U32 ready ) { server_.handleObserver( *this, ready ); } );
   }

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
      doTellNewcomer();
      look();
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
      nextSend_ = bytes() + chunk_;
      unsent_ = unsentBytes( socket_ );
      awaitRoom();
   }
   bool broken() const { return broken_ || failed(); }
   // Woken when the socket takes more, for as long as there is more. Then nothing need be heard of
   // single messages.
   void awaitRoom() {
      bool const more = !idle() || broken();
      heardFromIs( more ? nextSend_ : 1 );
      watch_->eventsIs( DescriptorWatch::reading | ( more ? DescriptorWatch::writing : 0u ) );
      if ( isWaitedFor() ) {
         server_.check_.doRunWithin( checkDelay );
      }
   }

   // Whether it has taken anything since the last look: the kernel has less than what it had after
   // we gave it the last. What has been given is no sign, since the kernel takes that by itself.
   void look() {
      Korv::S32 const unsent = unsentBytes( socket_ );
      if ( unsent < unsent_ || unsent <= 0 ) {
         takenAt_ = server_.now();
      }
      unsent_ = unsent;
   }
   bool isWaitedFor() const { return unsent_ > 0 || !idle(); }
   Seconds takenAt() const { return takenAt_; }
   Korv::S32 unsent() const { return unsent_; }
   bool isClogged() const { return unsent_ > halfBuffer_; }

   // Nobody is there any more. What the kernel still has is thrown away if the other end takes
   // nothing.
   void doClose( bool stalled ) {
      doEnd();
      if ( stalled ) {
         linger const atOnce{ 1, 0 };
         ::setsockopt( fd(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce );
      }
      watch_.reset();
      socket_ = Descriptor();
   }
   // Drops adapters; false once there are none.
   bool doDropAdapters( std::size_t limit ) {
      while ( !adapters_.empty() && limit > 0 ) {
         adapters_.back()->doDropChildren( limit );
         if ( limit > 0 ) {
            adapters_.pop_back();
            --limit;
         }
      }
      return !adapters_.empty();
   }

 protected:
   void handleBytes() override {
      if ( bytes() >= nextSend_ && !broken_ ) {
         send();
      } else {
         awaitRoom();
      }
   }

   // The loop hears of it, and ends the connection.
   void handleFailed() noexcept override { ::shutdown( fd(), SHUT_RDWR ); }

 private:
   AttrLogServer & server_;
   Descriptor socket_;
   std::optional< DescriptorWatch > watch_;
   std::size_t chunk_;
   std::size_t nextSend_; // when so much waits, from within a notification
   Korv::S32 halfBuffer_;
   Korv::S32 unsent_ = 0; // when last looked at, in the kernel
   Seconds takenAt_;      // the last time that it took something, or nothing waited
   bool broken_ = false;
   std::vector< std::unique_ptr< Korv::NboAttrLog::Adapter > > adapters_;
};

AttrLogServer::AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount,
                              Options const & options )
   : activity_( activity ), address_( address ), mount_( std::move( mount ) ), options_( options ),
     listening_( listeningSocket( address ) ) {
   if ( address_.isUnix ) {
      file_ = socketFile( address_.path );
   } else {
      address_.port = listeningPort( listening_ );
   }
   listenWatch_ =
      std::make_unique< DescriptorWatch >( activity_, listening_.number(), DescriptorWatch::reading,
                                           [this]( Korv::U32 ) { handleAccept(); } );
}

AttrLogServer::~AttrLogServer() {
   socketOut_->sockFdIs( -1 );
   // Somebody may have removed it, and another server have its own there.
   if ( address_.isUnix && socketFile( address_.path ) == file_ ) {
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
         retry_.doRunWithin( retryDelay );
      }
      return;
   }
   if ( observers_.size() >= options_.maxObservers ) {
      ++refused_;
      return;
   }
   if ( options_.sendBuffer > 0 ) {
      ::setsockopt( socket.number(), SOL_SOCKET, SO_SNDBUF, &options_.sendBuffer,
                    sizeof options_.sendBuffer );
   }
   Observer * observer = nullptr;
   try {
      observers_.push_back( std::make_unique< Observer >( *this, std::move( socket ) ) );
      observer = observers_.back().get();
      observer->mountIs( mount_ );
      doOfferSocket();
   } catch ( ... ) { // out of memory, or of what the kernel watches: as if it had not come
      if ( observer ) {
         observerDel( *observer );
      }
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

void AttrLogServer::handleCheck() {
   bool waiting = false;
   for ( auto at = observers_.begin(); at != observers_.end(); ) {
      Observer & observer = **at++;
      observer.look();
      if ( options_.stallLimit > 0 && observer.isWaitedFor() &&
           now() - observer.takenAt() >= options_.stallLimit ) {
         ++stalled_;
         observerDel( observer, true );
      } else {
         waiting = waiting || observer.isWaitedFor();
      }
   }
   doOfferSocket();
   if ( waiting ) {
      check_.doRunWithin( checkDelay );
   }
}

void AttrLogServer::observerDel( Observer & observer, bool stalled ) {
   observer.doClose( stalled );
   auto const at = std::find_if( observers_.begin(), observers_.end(),
                                 [&]( auto const & o ) { return o.get() == &observer; } );
   leaving_.splice( leaving_.end(), observers_, at );
   teardown_.doRunWithin( teardownDelay );
   if ( offered_ == &observer ) {
      offered_ = nullptr;
      doOfferSocket();
   }
}

void AttrLogServer::handleTeardown() {
   if ( !leaving_.front()->doDropAdapters( teardownPiece ) ) {
      leaving_.pop_front();
   }
   if ( !leaving_.empty() ) {
      teardown_.doRunWithin( teardownDelay );
   }
}

void AttrLogServer::doOfferSocket() {
   if ( !offered_ || offered_->isClogged() ) {
      auto const least = std::min_element(
         observers_.begin(), observers_.end(),
         []( auto const & a, auto const & b ) { return a->unsent() < b->unsent(); } );
      offered_ = least == observers_.end() ? nullptr : least->get();
   }
   socketOut_->sockFdIs( offered_ ? offered_->fd() : -1 );
}

} // namespace Linux
