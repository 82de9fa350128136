// Offers the mirror stream on a socket, to any number of observers.
//
// Each observer has an output of its own and the adapters that write on it. Nothing here waits for
// any of them: what a socket does not take stays in the output, and past the output's bound there
// are marks instead of messages. An observer that reads no more costs its marks; one that goes
// takes all of it along; one that comes gets everything from the start.
//
// Owned by the agent, made after the activity and gone before it. Entered as the connection's
// output it says whose send buffer the commits of the engine look at: that of the observer that
// has been there longest.
#pragma once

#include "mrp/platform/attrlog/Adapter.h"
#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/korv/NboAttrLog.h"
#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <functional>
#include <list>
#include <memory>
#include <vector>

namespace Linux {

class AttrLogServer {
 public:
   // Makes the adapters of all roots on a stream.
   using Mount = std::function< std::vector< std::unique_ptr< Korv::NboAttrLog::Adapter > >(
      Korv::NboAttrLog::Output & ) >;
   struct Options {
      std::size_t bound = Korv::NboAttrLog::Output::usualBound;
      int sendBuffer = 0; // SO_SNDBUF of each observer's socket; 0: the system's
      std::size_t maxObservers = 64;
   };

   // Throws std::system_error if the address cannot be had.
   AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount )
      : AttrLogServer( activity, address, std::move( mount ), Options() ) {}
   AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount,
                  Options const & options );
   AttrLogServer( AttrLogServer const & ) = delete;
   AttrLogServer & operator=( AttrLogServer const & ) = delete;
   ~AttrLogServer();

   // With the port that was found for port 0.
   StreamAddress const & address() const { return address_; }
   std::size_t observers() const { return observers_.size(); }
   // Nothing waits for any observer on this side of the sockets.
   bool idle() const;

   // To be entered in Korv::NboAttrLog::top() before the participant leaves standby.
   Korv::Ptr< Korv::NboAttrLog::SocketOutSm > socketOutSm() const { return socketOut_; }

 private:
   class Observer;
   class SocketOut : public Korv::NboAttrLog::SocketOutSm {
    public:
      Korv::S32 sockFd() const override { return fd_; }
      void sockFdIs( Korv::S32 fd ) { set( fd_, fd, &Reactor::onSockFd ); }

    private:
      Korv::S32 fd_ = -1;
   };
   // Goes on accepting after the process was out of descriptors.
   class Retry : public Korv::Clock::Reactor {
    public:
      explicit Retry( AttrLogServer & server )
         : Reactor( Korv::activityManager().clock(), Korv::Clock::Rank::outside ),
           server_( server ) {}
      void onTime() override { server_.listenWatch_->eventsIs( DescriptorWatch::reading ); }

    private:
      AttrLogServer & server_;
   };

   void handleAccept();
   void handleObserver( Observer & observer, Korv::U32 ready );
   void observerDel( Observer & observer );

   RealActivity & activity_;
   StreamAddress address_;
   Mount mount_;
   Options options_;
   Korv::Ptr< SocketOut > socketOut_{ new SocketOut };
   Descriptor listening_;
   std::unique_ptr< DescriptorWatch > listenWatch_;
   Retry retry_{ *this };
   std::list< std::unique_ptr< Observer > > observers_;
};

} // namespace Linux
