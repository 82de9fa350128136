// The mirror stream's outputs, as far as the logic asks for them.
#pragma once

#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Notifier.h"
#include "mrp/platform/korv/String8.h"

namespace Korv::NboAttrLog {

// What writes one connection's stream to its socket.
class SocketOutSm : public Notifier {
 public:
   class Reactor : public ReactorOn< SocketOutSm > {
    public:
      // There is another socket, or none any more.
      virtual void onSockFd() {}
   };

   // The socket's descriptor, or a negative number if there is none.
   virtual S32 sockFd() const = 0;
};

// The process's outputs by the name of their connection. Whoever runs a stream enters it.
class Registry {
 public:
   Ptr< SocketOutSm > socketOutSm( Name const & connection ) const;
   void socketOutSmIs( Name const & connection, Ptr< SocketOutSm > const & out );
   void socketOutSmDel( Name const & connection ) { outputs_.erase( connection ); }

 private:
   HashMap< Name, Ptr< SocketOutSm > > outputs_;
};

Registry & top();

} // namespace Korv::NboAttrLog
