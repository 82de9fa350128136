#include "command/run/RunOptions.h"

#include "command/Arguments.h"
#include "command/CommandError.h"
#include "command/StreamPath.h"
#include "command/run/RunArguments.h"

#include <array>

namespace Command {

namespace {

// The option's value, made if this is the first that is heard of it.
template < class T >
T & given( std::optional< T > & option ) {
   return option ? *option : option.emplace();
}

bool switchArgument( std::string const & text ) {
   if ( text != "true" && text != "false" ) {
      throw CommandError( "'" + text + "' is neither true nor false" );
   }
   return text == "true";
}

LogTarget logArgument( std::string const & text ) {
   constexpr std::pair< char const *, LogTarget > targets[] = {
      { "errors", LogTarget::errors },
      { "stderr", LogTarget::standardError },
      { "syslog", LogTarget::syslog },
      { "none", LogTarget::none },
   };
   for ( auto const & [name, target] : targets ) {
      if ( text == name ) {
         return target;
      }
   }
   throw CommandError( "'" + text + "' is no place for logs: errors, stderr, syslog or none" );
}

std::string socketArgument( std::string const & text ) {
   if ( text != noSocket ) {
      try {
         streamAddressArgument( text );
      } catch ( CommandError const & error ) {
         throw CommandError( error.what() + std::string( ", or " ) + noSocket );
      }
   }
   return text;
}

Linux::StreamAddress metricsArgument( std::string const & text ) {
   try {
      return streamAddressArgument( "tcp:" + text );
   } catch ( CommandError const & ) {
      throw CommandError( "'" + text + "' is neither PORT nor HOST:PORT, such as 9100" );
   }
}

Korv::Seconds timerArgument( std::string const & text ) {
   constexpr Nanoseconds tick = nanosecondsPerSecond / 10;
   Nanoseconds const time = durationArgument( text );
   if ( time < tick ) {
      throw CommandError( "'" + text + "' is too short: timers count tenths of a second" );
   }
   return static_cast< Korv::Seconds >( time ) / nanosecondsPerSecond;
}

void addTalker( RunOptions & options, OptionParts const & parts ) {
   given( options.talkers ).push_back( talkerArgument( parts ) );
}
void addDomain( RunOptions & options, OptionParts const & parts ) {
   given( options.domains ).push_back( domainArgument( parts ) );
}

using Text = std::string;
using Options = RunOptions;

constexpr std::array all{
   RunOption{
      "application", "mvrp|msrp", "The protocol to speak", false,
      []( Options & to, Text const & text ) { to.application = applicationArgument( text ); },
      nullptr },
   RunOption{
      "declare", "VLANS", "MVRP: the VLANs to declare, such as 10,20-29", true,
      []( Options & to, Text const & text ) { given( to.declare ).merge( vlansArgument( text ) ); },
      nullptr },
   RunOption{ "bridge", nullptr,
              "MVRP: declare what is registered on one interface on the others that forward", false,
              []( Options & to, Text const & text ) { to.bridge = switchArgument( text ); },
              nullptr },
   RunOption{ "talker", "STREAM", "MSRP: a stream to talk, in parts as below", true,
              []( Options & to, Text const & text ) { addTalker( to, partsOf( text ) ); },
              addTalker },
   RunOption{ "listener", "ID", "MSRP: the id of a stream to listen to", true,
              []( Options & to, Text const & text ) {
                 given( to.listeners ).insert( streamIdArgument( text ) );
              },
              nullptr },
   RunOption{ "domain", "CLASS", "MSRP: an SR class, in parts as below [A and B]", true,
              []( Options & to, Text const & text ) { addDomain( to, partsOf( text ) ); },
              addDomain },
   RunOption{ "leave-time", "SECONDS", "How long a registration outlives its leave [0.6]", false,
              []( Options & to, Text const & text ) { to.leaveTime = timerArgument( text ); },
              nullptr },
   RunOption{
      "leave-all-time", "SECONDS",
      "How often all are asked to declare anew; stretched at random by up to a half [10]", false,
      []( Options & to, Text const & text ) { to.leaveAllTime = timerArgument( text ); }, nullptr },
   RunOption{
      "address", "MAC", "The group address [01:80:c2:00:00:21, for msrp 01:80:c2:00:00:0e]", false,
      []( Options & to, Text const & text ) { to.address = addressArgument( text ); }, nullptr },
   RunOption{ "ethertype", "N", "The EtherType, decimal or 0x... [0x88f5, for msrp 0x22ea]", false,
              []( Options & to, Text const & text ) { to.ethertype = ethertypeArgument( text ); },
              nullptr },
   RunOption{ "log", "errors|stderr|syslog|none",
              "Where the logs go: those of errors alone, or all, to standard error, or to syslog "
              "[errors]",
              false, []( Options & to, Text const & text ) { to.log = logArgument( text ); },
              nullptr },
   RunOption{ "trace", "HANDLE/LEVELS",
              "Traces on standard error, such as Mrp/4-8 [what MRP_TRACE says]", false,
              []( Options & to, Text const & text ) { to.trace = text; }, nullptr },
   RunOption{ "ring", "FILE", "Keep a ring buffer of what happens in FILE, for mrp ring", false,
              []( Options & to, Text const & text ) { to.ring = text; }, nullptr },
   RunOption{
      "socket", "ADDRESS",
      "Where to offer the mirror stream: a path, unix:PATH, tcp:PORT, tcp:HOST:PORT or none "
      "[as below]",
      false, []( Options & to, Text const & text ) { to.socket = socketArgument( text ); },
      nullptr },
   RunOption{
      "metrics", "[HOST:]PORT",
      "Serve metrics for Prometheus over HTTP, on the loopback interface if there is no HOST",
      false, []( Options & to, Text const & text ) { to.metrics = metricsArgument( text ); },
      nullptr },
   RunOption{ "json", nullptr, "Print lines of JSON", false,
              []( Options & to, Text const & text ) { to.json = switchArgument( text ); },
              nullptr },
   RunOption{ "interfaces", "INTERFACE", "A network interface to take part on", true,
              []( Options & to, Text const & text ) { given( to.interfaces ).push_back( text ); },
              nullptr },
};

} // namespace

std::span< RunOption const > runOptions() { return all; }

void RunOptions::fillFrom( RunOptions const & others ) {
   auto const fill = [&]( auto... option ) {
      ( ( this->*option = this->*option ? this->*option : others.*option ), ... );
   };
   using O = RunOptions;
   fill( &O::application, &O::address, &O::ethertype, &O::declare, &O::bridge, &O::talkers,
         &O::listeners, &O::domains, &O::leaveTime, &O::leaveAllTime, &O::json, &O::interfaces,
         &O::log, &O::trace, &O::ring, &O::socket, &O::metrics );
}

} // namespace Command
