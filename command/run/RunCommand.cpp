#include "command/run/RunCommand.h"

#include "mrp/platform/linux/Host.h"
#include "mrp/platform/linux/InterfaceProblem.h"
#include "mrp/platform/linux/SignalWatch.h"

#include "command/CommandError.h"
#include "command/StandardOutput.h"
#include "command/run/MetricsServer.h"
#include "command/run/Observation.h"
#include "command/run/RunAgent.h"
#include "command/run/RunConfig.h"
#include "command/run/RunSettings.h"
#include "command/run/RunStream.h"

#include <memory>
#include <optional>
#include <system_error>

namespace Command {

namespace {

// Interfaces may come and go later; at the start they are to be there, or else a name is wrong.
void checkInterfaces( RunSettings const & settings ) {
   for ( Pelk::IntfId const intfId : settings.interfaces ) {
      if ( auto const problem = Linux::interfaceProblem( intfId ) ) {
         throw CommandError( intfId.stringValue() + ": " + problem.text );
      }
   }
}

std::unique_ptr< MetricsServer > metricsServed( RunSettings const & settings,
                                                Linux::RealActivity & activity,
                                                MetricsServer::Text text ) {
   if ( !settings.metrics ) {
      return nullptr;
   }
   try {
      return std::make_unique< MetricsServer >( activity, *settings.metrics, std::move( text ) );
   } catch ( std::runtime_error const & error ) {
      throw CommandError( "metrics: " + settings.metrics->text() + ": " + error.what() );
   }
}

// What the command line says, and for the rest the file as it stands now.
RunOptions optionsOf( RunArguments const & arguments ) {
   RunOptions options = arguments.options;
   if ( !arguments.configFile.empty() ) {
      options.fillFrom( readRunConfig( arguments.configFile ) );
   }
   return options;
}

void switchTraces( RunArguments const & arguments, std::ostream & err ) {
   try {
      std::string const on =
         Observation::switchTraces( optionsOf( arguments ).trace.value_or( "" ) );
      err << "mrp: traces are " << ( on.empty() ? "off" : "on: " + on ) << std::endl;
   } catch ( CommandError const & error ) {
      err << "mrp: warning: traces stay as they are: " << error.what() << std::endl;
   }
}

int runOnLinux( RunArguments const & arguments, RunSettings const & settings, std::ostream & out,
                std::ostream & err ) {
   BrokenPipeIgnored const brokenPipeIgnored;
   Linux::RealActivity activity;
   checkInterfaces( settings );
   Observation const observation( settings );
   Linux::Host host( activity );
   host.onProblem( [&err]( Pelk::IntfId const & intfId, Linux::InterfaceProblem const & problem ) {
      err << "mrp: warning: " << intfId << ": " << problem.text << '\n';
   } );
   for ( Pelk::IntfId const intfId : settings.interfaces ) {
      host.interfaceIs( intfId );
   }
   std::optional< RunAgent > agent;
   // The agent is made last: signals, stream and metrics refer to it, and call it from the loop
   // only. The signals are held until the stream has gone: a second Ctrl-C, or a first one early,
   // must not leave its socket behind.
   Linux::SignalWatch const signals( activity, { SIGTERM, SIGINT, SIGUSR1, SIGUSR2 },
                                     [&]( int signal ) {
                                        switch ( signal ) {
                                        case SIGUSR1: agent->showAttributes(); break;
                                        case SIGUSR2: switchTraces( arguments, err ); break;
                                        default: activity.doStop();
                                        }
                                     } );
   auto const stream = RunStream::offered(
      settings, activity, host.em()->name(),
      [&agent]( Korv::NboAttrLog::Output & output ) { return agent->mirror( output ); }, err );
   auto const metrics = metricsServed( settings, activity, [&agent] { return agent->metrics(); } );
   agent.emplace( settings, host, out, [&activity] { activity.doStop(); } );
   activity.run();
   agent->stop();
   return 0;
}

} // namespace

int run( RunArguments const & arguments, std::ostream & out, std::ostream & err ) {
   RunSettings const settings = runSettings( optionsOf( arguments ) );
   for ( std::string const & warning : warningsOf( settings ) ) {
      err << "mrp: warning: " << warning << '\n';
   }
   try {
      return runOnLinux( arguments, settings, out, err );
   } catch ( std::system_error const & error ) {
      throw CommandError( error.what() );
   }
}

} // namespace Command
