// Metrics over HTTP, on the process's own loop: GET /metrics.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/linux/DescriptorWatch.h"
#include "mrp/platform/linux/StreamSocket.h"

#include <functional>
#include <list>
#include <memory>
#include <string>

struct MHD_Connection;
struct MHD_Daemon;

namespace Command {

// A connection carries one request and lives for a few seconds at most, whatever its client does;
// there are few at a time, and the others wait in the kernel.
//
// Owned by whoever runs the loop; gone before the activity.
class MetricsServer {
 public:
   using Text = std::function< std::string() >;

   // `text` is asked at each scrape. Throws std::system_error or Korv::RangeException if the
   // address cannot be had.
   MetricsServer( Linux::RealActivity & activity, Linux::StreamAddress const & address, Text text );
   MetricsServer( MetricsServer const & ) = delete;
   MetricsServer & operator=( MetricsServer const & ) = delete;

   // Called by the library's callbacks.
   int handleRequest( MHD_Connection & connection, std::string const & path,
                      std::string const & method ) const;
   void handleConnected( int socket );
   void handleClosed( int socket );

 private:
   // An open connection, which is cut off at its deadline.
   struct Client {
      explicit Client( int number );
      int socket;
      Korv::CallbackTimer deadline;
   };
   struct Stop {
      void operator()( MHD_Daemon * daemon ) const;
   };

   // Runs the library for all that is ready, and sets the time at which it wants to run next.
   void work();

   Text text_;
   std::list< Client > clients_; // each connection that is open
   std::size_t closed_ = 0;
   // Each goes before what stands above it: the library closes its clients as it stops.
   Linux::Descriptor listening_;
   std::unique_ptr< MHD_Daemon, Stop > daemon_;
   std::unique_ptr< Linux::DescriptorWatch > watch_;
   // For what no descriptor tells of.
   Korv::CallbackTimer due_{ Korv::activityManager().clock(), [this] { work(); } };
};

} // namespace Command
