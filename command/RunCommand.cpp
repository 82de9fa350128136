#include "command/RunCommand.h"

#include "mrp/platform/linux/Host.h"
#include "mrp/platform/linux/InterfaceProblem.h"
#include "mrp/platform/linux/SignalWatch.h"

#include "command/CommandError.h"
#include "command/Observation.h"
#include "command/RunAgent.h"
#include "command/RunConfig.h"
#include "command/RunSettings.h"

#include <system_error>

namespace Command {

namespace {

// A write to whoever has stopped reading is to fail, and not to end the process: declarations
// would stay behind.
class BrokenPipeIgnored {
 public:
   BrokenPipeIgnored() : before_( std::signal( SIGPIPE, SIG_IGN ) ) {}
   BrokenPipeIgnored( BrokenPipeIgnored const & ) = delete;
   BrokenPipeIgnored & operator=( BrokenPipeIgnored const & ) = delete;
   ~BrokenPipeIgnored() { std::signal( SIGPIPE, before_ ); }

 private:
   void ( *before_ )( int );
};

// Interfaces may come and go later; at the start they are to be there, or else a name is wrong.
void checkInterfaces( RunSettings const & settings ) {
   for ( Pelk::IntfId const intfId : settings.interfaces ) {
      if ( auto const problem = Linux::interfaceProblem( intfId ) ) {
         throw CommandError( intfId.stringValue() + ": " + problem.text );
      }
   }
}

int runOnLinux( RunSettings const & settings, std::ostream & out, std::ostream & err ) {
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
   RunAgent agent( settings, host, out, [&activity] { activity.doStop(); } );
   Linux::SignalWatch const signals( activity, { SIGTERM, SIGINT, SIGUSR1 }, [&]( int signal ) {
      if ( signal == SIGUSR1 ) {
         agent.showAttributes();
      } else {
         activity.doStop();
      }
   } );
   activity.run();
   agent.stop();
   return 0;
}

} // namespace

int run( RunArguments const & arguments, std::ostream & out, std::ostream & err ) {
   RunOptions options = arguments.options;
   if ( !arguments.configFile.empty() ) {
      options.fillFrom( readRunConfig( arguments.configFile ) );
   }
   RunSettings const settings = runSettings( options );
   for ( std::string const & warning : warningsOf( settings ) ) {
      err << "mrp: warning: " << warning << '\n';
   }
   try {
      return runOnLinux( settings, out, err );
   } catch ( std::system_error const & error ) {
      throw CommandError( error.what() );
   }
}

} // namespace Command
