// Offers the mirror stream on a socket, to up to maxObservers observers at a time. One more is
// disconnected at once.
//
// Each observer has an output of its own and the adapters that write on it. Nothing here waits for
// any of them: what a socket does not take stays in the output, and past the output's bound there
// are marks instead of messages. An observer that reads no more costs its marks; one that goes
// takes all of it along; one that comes gets everything from the start.
//
// An observer that has taken nothing for too long, while something waits for it, is disconnected.
// It may come again and gets everything.
//
// The engine holds its commits off while the send buffer of one socket is more than half full. The
// server says which socket that is (socketOutSm). It is one observer's, at first that of the one
// that came first, until more than half of it is unsent; then it is that of whoever has the least
// unsent. So a slow observer holds nothing up as long as another keeps up.
//
// Owned by the agent, made after the activity and gone before it.
#pragma once

#include "mrp/platform/attrlog/Adapter.h"
#include "mrp/platform/attrlog/SocketOutSm.h"
#include "mrp/platform/korv/Clock.h"
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
      Seconds stallLimit = 10; // without taking anything; 0: none
   };

   // Throws std::system_error or Korv::RangeException if the address cannot be had.
   AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount )
      : AttrLogServer( activity, address, std::move( mount ), Options() ) {}
   AttrLogServer( RealActivity & activity, StreamAddress const & address, Mount mount,
                  Options const & options );
   AttrLogServer( AttrLogServer const & ) = delete;
   AttrLogServer & operator=( AttrLogServer const & ) = delete;
   ~AttrLogServer();

   // As it was given, but with the port that was found for port 0.
   StreamAddress const & address() const { return address_; }
   std::size_t observers() const { return observers_.size(); }
   // How many have been sent away since they took nothing.
   Korv::U64 stalled() const { return stalled_; }
   // The same, since there were as many as there may be.
   Korv::U64 refused() const { return refused_; }
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
   using Observers = std::list< std::unique_ptr< Observer > >;

   void handleAccept();
   void handleRetry() { listenWatch_->eventsIs( DescriptorWatch::reading ); }
   void handleObserver( Observer & observer, Korv::U32 ready );
   void handleCheck();
   void handleTeardown();
   void observerDel( Observer & observer, bool stalled = false );
   void doOfferSocket();
   Seconds now() const { return check_.clock().now(); }

   RealActivity & activity_;
   StreamAddress address_;
   Mount mount_;
   Options options_;
   Korv::Ptr< SocketOut > socketOut_{ new SocketOut };
   Descriptor listening_;
   SocketFile file_; // at the path, of a Unix-domain address
   std::unique_ptr< DescriptorWatch > listenWatch_;
   // After the process was out of descriptors; while something waits for somebody; while adapters
   // are left of observers that have gone.
   Korv::CallbackTimer retry_{ activity_.clock(), [this] { handleRetry(); } };
   Korv::CallbackTimer check_{ activity_.clock(), [this] { handleCheck(); } };
   Korv::CallbackTimer teardown_{ activity_.clock(), [this] { handleTeardown(); } };
   Observers observers_;
   Observers leaving_; // gone, short of their adapters
   Observer * offered_ = nullptr;
   Korv::U64 stalled_ = 0;
   Korv::U64 refused_ = 0;
};

} // namespace Linux
