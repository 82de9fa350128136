// The one file that includes CLI11, which takes its time to compile: each subcommand has its
// options described here and is run from here, with its arguments read into a plain struct.
#include "command/CommandLine.h"

#include "mrp/observability/TraceSetting.h"
#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"
#include "command/RingCommand.h"
#include "command/StandardOutput.h"
#include "command/replay/ReplayCommand.h"
#include "command/run/RunCommand.h"
#include "command/script/ScriptCommand.h"
#include "command/show/ShowCommand.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>

namespace Command {

namespace {

constexpr int usageError = 2;

// `read` for one option: what is wrong with a text names the option.
template < class Read >
auto readFor( std::string const & option, Read read ) {
   return [option, read]( std::string const & text ) {
      try {
         return read( text );
      } catch ( CommandError const & error ) {
         throw CommandError( option + ": " + error.what() );
      }
   };
}

// An option whose text goes through `read` into `target`.
template < class T, class Read >
CLI::Option * addOption( CLI::App & app, std::string const & name, T & target, Read read,
                         std::string const & description ) {
   return app.add_option_function< std::string >(
      name,
      [&target, read = readFor( name, read )]( std::string const & text ) {
         target = read( text );
      },
      description );
}

// An option of several texts, each of which goes through `read`.
template < class Read >
CLI::Option * addListOption( CLI::App & app, std::string const & name, Read read,
                             std::string const & description ) {
   return app.add_option_function< std::vector< std::string > >(
      name,
      [read = readFor( name, read )]( std::vector< std::string > const & texts ) {
         std::ranges::for_each( texts, read );
      },
      description );
}

// One text each time the option is given, and not all that follow.
void takeOneEachTime( CLI::Option & option, CLI::MultiOptionPolicy policy ) {
   option.expected( 1 )->allow_extra_args( false )->multi_option_policy( policy );
}

using Run = std::function< int( std::ostream & out, std::ostream & err ) >;

void describeReplay( CLI::App & mrp, Run & run ) {
   CLI::App & app = *mrp.add_subcommand(
      "replay", "Run a participant on the frames of captures, and show what it does" );
   auto const options = std::make_shared< ReplayOptions >();
   addOption( app, "--application", options->application, applicationArgument,
              "The protocol that the participant speaks: mvrp or msrp" )
      ->type_name( "mvrp|msrp" )
      ->required();
   addOption( app, "--address", options->address, addressArgument,
              "Its group address [01:80:c2:00:00:21, for msrp 01:80:c2:00:00:0e]" )
      ->type_name( "MAC" );
   addOption( app, "--ethertype", options->ethertype, ethertypeArgument,
              "Its EtherType, decimal or 0x... [0x88f5, for msrp 0x22ea]" )
      ->type_name( "N" );
   addOption( app, "--tail", options->tail, durationArgument,
              "How long time goes on after the last frame [1]" )
      ->type_name( "SECONDS" );
   app.add_option( "--out", options->outDirectory,
                   "Write what interface NAME transmitted to DIR/NAME.pcap" )
      ->type_name( "DIR" );
   app.add_flag( "-j,--json", options->json, "Print one JSON document and nothing else" );
   app.add_option_function< std::vector< std::string > >(
         "CAPTURE",
         [options]( std::vector< std::string > const & texts ) {
            for ( std::string const & text : texts ) {
               options->captures.push_back( captureArgument( text ) );
            }
         },
         "A capture of Ethernet, pcap or pcapng, for each interface [eth0]" )
      ->type_name( "[NAME=]FILE" )
      ->required();
   app.footer(
      "The participant starts at time 0 with all interfaces, on a virtual clock. The earliest\n"
      "frame of all captures arrives at time 0 and the others at their distance from it, through\n"
      "the filter that the participant has on a socket. What is due by the time of a frame\n"
      "happens before it. Every frame counts as heard: a capture made beside a participant has to\n"
      "leave out what that one sent, as tcpdump -Q in does.\n"
      "\n"
      "The times of LeaveAll are drawn with the C library's rand() and its default seed: the same\n"
      "captures and options always give the same output.\n"
      "\n"
      "A NAME holds no '/'; a file with '=' in its name can be given as ./a=b.pcap." );
   app.callback( [options, &run] {
      run = [options]( std::ostream & out, std::ostream & err ) {
         return replay( *options, out, err );
      };
   } );
}

void describeScript( CLI::App & mrp, Run & run ) {
   CLI::App & app = *mrp.add_subcommand(
      "script", "Run a participant through a script of timed steps, and show what it does" );
   auto const options = std::make_shared< ScriptOptions >();
   app.add_option( "--out", options->outDirectory,
                   "Write what interface NAME transmitted to DIR/NAME.pcap" )
      ->type_name( "DIR" );
   app.add_flag( "-j,--json", options->json, "Print one JSON document and nothing else" );
   app.add_option( "FILE", options->path, "The script" )->type_name( "FILE.json" )->required();
   app.footer(
      "The participant stands alone on in-memory wires and a virtual clock. The times of LeaveAll\n"
      "are drawn with the C library's rand() and its default seed: the same script always gives\n"
      "the same output.\n"
      "\n"
      "The exit status is 1 if the engine gave up on a broken invariant or a value out of range:\n"
      "what happened up to there is printed all the same. docs/scenario-scripts.md has the form." );
   app.callback( [options, &run] {
      run = [options]( std::ostream & out, std::ostream & err ) {
         return script( *options, out, err );
      };
   } );
}

// An option of `mrp run`, on the command line as the table of them has it.
void addRunOption( CLI::App & app, RunOption const & option, RunOptions & target ) {
   std::string const name = std::string( "--" ) + option.name;
   auto const read = [&option, &target]( std::string const & text ) {
      option.read( target, text );
   };
   if ( !option.typeName ) {
      app.add_flag_function(
         name == "--json" ? "-j," + name : name,
         [read = readFor( name, read )]( std::int64_t count ) {
            read( count > 0 ? "true" : "false" );
         },
         option.description );
   } else if ( name == "--interfaces" ) {
      addListOption( app, option.typeName, read, option.description )->type_name( "" );
   } else {
      using Policy = CLI::MultiOptionPolicy;
      CLI::Option & added = *addListOption( app, name, read, option.description );
      added.type_name( option.typeName );
      takeOneEachTime( added, option.isList ? Policy::TakeAll : Policy::Throw );
   }
}

void describeRun( CLI::App & mrp, Run & run ) {
   CLI::App & app = *mrp.add_subcommand( "run", "Take part on network interfaces" );
   auto const arguments = std::make_shared< RunArguments >();
   app.add_option( "--config", arguments->configFile,
                   "A TOML file with any of these options; the command line goes before it" )
      ->type_name( "FILE" );
   for ( RunOption const & option : runOptions() ) {
      addRunOption( app, option, arguments->options );
   }
   app.footer(
      "A line is printed for each join and each leave: the seconds since the start, the\n"
      "interface, what happened to what.\n"
      "\n"
      "A talker is given as stream=ID,dest=MAC,frame-size=BYTES and, where the default will not\n"
      "do, interval-frames=N [1], class=A..G [A], vlan=VLAN [that of the class], rank=0|1 [1],\n"
      "latency=NANOSECONDS [0]. An ID is eight bytes: 02:00:00:00:00:01:00:07. A domain is given\n"
      "as class=A,priority=3,vlan=2, which is class A if nothing is said; class B has priority 2.\n"
      "\n"
      "The mirror stream is offered in /run/mrp, for others than root in $XDG_RUNTIME_DIR/mrp, as\n"
      "mvrp.sock or msrp.sock.\n"
      "\n"
      "SIGTERM and SIGINT withdraw what was declared and end the command with exit status 0;\n"
      "SIGUSR1 prints all attributes; SIGUSR2 switches traces off, or on as --trace and the file\n"
      "say by then. It takes CAP_NET_RAW. docs/running.md tells more." );
   app.callback( [arguments, &run] {
      run = [arguments]( std::ostream & out, std::ostream & err ) {
         return Command::run( *arguments, out, err );
      };
   } );
}

void describeRing( CLI::App & mrp, Run & run ) {
   CLI::App & app = *mrp.add_subcommand( "ring", "Print the ring buffer of a process" );
   auto const options = std::make_shared< RingOptions >();
   addOption( app, "--level", options->levels, levelsArgument, "These levels alone" )
      ->type_name( "LEVELS" );
   app.add_flag( "-j,--json", options->json, "Print one JSON document and nothing else" );
   app.add_option( "FILE", options->path, "What mrp run --ring has written" )
      ->type_name( "" )
      ->required();
   app.footer(
      "Each line: when, the level, what. A level has a ring of its own, so that rare errors (2 to\n"
      "4) outlive the everyday detail (8). LEVELS is such as 2,4-8.\n"
      "\n"
      "The file may be that of a process that runs, or of one that has ended in whatever way. The\n"
      "exit status is 1 if something in it was written by none. docs/observability.md tells "
      "more." );
   app.callback( [options, &run] {
      run = [options]( std::ostream & out, std::ostream & err ) {
         return ring( *options, out, err );
      };
   } );
}

void describeShow( CLI::App & mrp, Run & run ) {
   CLI::App & app =
      *mrp.add_subcommand( "show", "Show what a running participant declares and registers" );
   auto const options = std::make_shared< ShowOptions >();
   auto const addFilter = [&app]( char const * name, auto add, char const * description ) {
      CLI::Option * const added = addListOption( app, name, add, description );
      takeOneEachTime( *added, CLI::MultiOptionPolicy::TakeAll );
      return added;
   };
   app.add_flag( "-w,--watch", options->watch, "Go on, and show anew whatever changes" );
   app.add_flag( "-j,--json", options->json, "Print JSON: one document, or a line at each change" );
   app.add_flag( "--metrics", options->metrics, "Print metrics in the text form of Prometheus" );
   ShowFilter & filter = options->filter;
   addFilter(
      "--interface", [&filter]( std::string const & name ) { filter.interfaces.insert( name ); },
      "This interface alone" )
      ->type_name( "NAME" );
   addFilter(
      "--type", [&filter]( std::string const & text ) { filter.typeAdd( text ); },
      "Attributes of this type alone: vlan, talker-advertise, talker-failed, listener, domain, or "
      "its number" )
      ->type_name( "TYPE" );
   addFilter(
      "--state", [&filter]( std::string const & text ) { filter.stateAdd( text ); },
      "Attributes in this state alone: IN, LV, MT of the registrar, or VO, AO, QO, QP, QA, ... of "
      "the applicant" )
      ->type_name( "STATE" );
   app.add_option( "SOCKET", options->socket,
                   "Where mrp run offers its stream: a path, tcp:PORT or tcp:HOST:PORT; without "
                   "it all that are in /run/mrp, or for others than root in $XDG_RUNTIME_DIR/mrp" )
      ->type_name( "" );
   app.footer(
      "Each attribute has the states of its applicant (app) and its registrar (reg): QA is\n"
      "declared by us, IN registered, LV about to age out, MT not registered.\n"
      "\n"
      "--interface, --type and --state can be given several times. Of one of them any will do, of\n"
      "different ones all are asked for, and so it is with states of the applicant and states of\n"
      "the registrar: --state QA --state MT is what we declare and nobody else does.\n"
      "\n"
      "--watch follows a participant that restarts, and waits at a SOCKET for one to start. In a\n"
      "terminal, lines that are new stand out for a moment; q ends it. docs/showing.md tells "
      "more." );
   app.callback( [options, &run] {
      run = [options]( std::ostream & out, std::ostream & err ) {
         return show( *options, out, err );
      };
   } );
}

// CLI11 speaks of what is missing, also where something else stands in its place.
std::string usageWords( CLI::App const & app, CLI::ParseError const & error, int argc,
                        char const * const * argv ) {
   auto const chosen = app.get_subcommands();
   if ( chosen.empty() && argc > 1 && argv[1][0] != '-' ) {
      return "there is no subcommand '" + std::string( argv[1] ) + "' (see mrp -h)";
   }
   std::string const subcommand = chosen.empty() ? "" : chosen.front()->get_name() + " ";
   if ( !chosen.empty() ) {
      for ( std::string const & text : chosen.front()->remaining() ) {
         if ( text.starts_with( '-' ) ) {
            return "there is no option '" + text + "' (see mrp " + subcommand + "-h)";
         }
      }
   }
   return error.what() + ( " (see mrp " + subcommand + "-h)" );
}

// As the environment says.
void switchTraces() {
   try {
      Mrp::traceLevelsOfEnvironment();
   } catch ( Korv::RangeException const & error ) {
      throw CommandError( error.what() );
   }
}

std::string oneLine( std::string text ) {
   for ( char & c : text ) {
      c = c == '\n' ? ' ' : c;
   }
   return text;
}

} // namespace

int runCommandLine( int argc, char const * const * argv, std::ostream & out, std::ostream & err ) {
   CLI::App app( "Speaks MVRP and MSRP, the registration protocols of IEEE 802.1Q.", "mrp" );
   app.set_version_flag( "--version", "mrp " MRP_VERSION, "Print the version and exit" );
   app.require_subcommand( 1 );
   Run run;
   describeReplay( app, run );
   describeRun( app, run );
   describeScript( app, run );
   describeRing( app, run );
   describeShow( app, run );

   try {
      app.parse( argc, argv );
      switchTraces();
      int const status = run( out, err );
      out.flush();
      if ( !out ) {
         throw CommandError( "the output cannot be written" );
      }
      return status;
   } catch ( ReaderGone const & ) {
      return 0;
   } catch ( CLI::Success const & asked ) {
      return app.exit( asked, out, err ); // for help or the version
   } catch ( CLI::ParseError const & error ) {
      err << "mrp: " << oneLine( usageWords( app, error, argc, argv ) ) << '\n';
   } catch ( CommandError const & error ) {
      err << "mrp: " << oneLine( error.what() ) << '\n';
   }
   return usageError;
}

} // namespace Command
