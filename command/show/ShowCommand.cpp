#include "command/show/ShowCommand.h"

#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"
#include "command/StreamPath.h"
#include "command/report/Metrics.h"
#include "command/show/ShowJson.h"
#include "command/show/ShowScreen.h"
#include "command/show/ShowSource.h"
#include "command/show/ShowWatch.h"

#include <algorithm>
#include <filesystem>
#include <list>
#include <map>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace Command {

namespace {

std::string howToStart() {
   return std::string( "mrp run makes one, as in: mrp run --application mvrp eth0" ) +
          ( ::geteuid() == 0 ? "" : "; that of root is in /run/mrp, for root to see" );
}

// The sockets of the default folder, by name.
std::vector< Linux::StreamAddress > defaultAddresses() {
   std::string const folder = defaultStreamFolder();
   if ( folder.empty() ) {
      throw CommandError( "no socket is given, and without XDG_RUNTIME_DIR there is no folder to "
                          "look in: " +
                          howToStart() );
   }
   std::vector< Linux::StreamAddress > addresses;
   std::error_code error;
   for ( auto entry = std::filesystem::directory_iterator( folder, error );
         !error && entry != std::filesystem::directory_iterator(); entry.increment( error ) ) {
      std::error_code gone;
      if ( entry->is_socket( gone ) ) {
         addresses.push_back( streamAddressArgument( entry->path().string() ) );
      }
   }
   if ( error && error != std::errc::no_such_file_or_directory ) {
      throw CommandError( folder + ": " + error.message() );
   }
   if ( addresses.empty() ) {
      throw CommandError( "there is no participant to show: no socket is in " + folder + "; " +
                          howToStart() );
   }
   std::ranges::sort( addresses, {}, &Linux::StreamAddress::path );
   return addresses;
}

// Those that have answered with a whole copy; warns of the others.
std::vector< ShowSource * > answering( Linux::RealActivity & activity,
                                       std::list< ShowSource > & sources, std::ostream & err ) {
   std::vector< ShowSource * > whole;
   std::string failures;
   std::vector< ShowSource * > open;
   for ( ShowSource & source : sources ) {
      open.push_back( &source );
   }
   while ( !open.empty() ) {
      activity.runFor( ShowSource::moment / 5 );
      std::erase_if( open, [&]( ShowSource * source ) {
         if ( source->isWhole() ) {
            whole.push_back( source );
            return true;
         }
         std::string const failure = source->failure();
         if ( !failure.empty() ) {
            failures += ( failures.empty() ? "" : "; " ) + source->address() + ": " + failure;
         }
         return !failure.empty();
      } );
   }
   if ( whole.empty() ) {
      throw CommandError( failures );
   }
   if ( !failures.empty() ) {
      err << "mrp: warning: " << failures << '\n';
   }
   std::ranges::sort( whole, {}, &ShowSource::address );
   return whole;
}

// Nothing but the protocol tells the samples of several participants apart.
using Metrics = std::map< Mrp::MrpApplication, std::string >;

void addMetrics( Metrics & all, MrpObserver::Mirror const & mirror ) {
   for ( auto published = mirror.status().application().walk(); published; ++published ) {
      Mrp::MrpApplication const application = published.key();
      auto const text =
         metricsText( application, mirror.status(), mirror.counters(), mirror.config() );
      if ( !all.emplace( application, text ).second ) {
         throw CommandError( "two participants of " + Mrp::stringValue( application ) +
                             ": name one SOCKET" );
      }
   }
}

// The texts of several participants as one, in which a metric is described once, ahead of all its
// samples.
std::string oneExposition( Metrics const & texts ) {
   std::vector< std::string > metrics;         // in their order
   std::map< std::string, std::string > lines; // of each
   for ( auto const & [application, text] : texts ) {
      std::istringstream in( text );
      std::string metric;
      bool isKnown = false;
      for ( std::string line; std::getline( in, line ); ) {
         bool const isComment = line.starts_with( "# " );
         if ( line.starts_with( "# HELP " ) ) {
            metric = line.substr( 7, line.find( ' ', 7 ) - 7 );
            isKnown = lines.contains( metric );
            if ( !isKnown ) {
               metrics.push_back( metric );
            }
         }
         if ( !isComment || !isKnown ) {
            lines[metric] += line + '\n';
         }
      }
   }
   std::string all;
   for ( std::string const & metric : metrics ) {
      all += lines[metric];
   }
   return all;
}

int showOnce( ShowOptions const & options, Linux::RealActivity & activity,
              std::list< ShowSource > & sources, std::ostream & out, std::ostream & err ) {
   std::vector< ShowStream > streams;
   Metrics metrics;
   for ( ShowSource * const source : answering( activity, sources, err ) ) {
      if ( options.metrics ) {
         addMetrics( metrics, source->mirror() );
      } else {
         streams.push_back( source->stream( options.filter ) );
      }
   }
   if ( options.metrics ) {
      out << oneExposition( metrics );
   } else if ( options.json ) {
      writeShowJson( streams, JsonForm::indented, out );
   } else {
      writeShowText( streams, terminalSize( out ).value_or( ScreenSize() ).columns, out );
   }
   return 0;
}

} // namespace

int show( ShowOptions const & options, std::ostream & out, std::ostream & err ) {
   if ( options.metrics && ( options.json || options.watch ) ) {
      throw CommandError( "--metrics goes with neither --json nor --watch" );
   }
   auto const addresses = options.socket.empty()
                             ? defaultAddresses()
                             : std::vector{ streamAddressArgument( options.socket ) };
   try {
      Linux::RealActivity activity;
      std::list< ShowSource > sources;
      for ( Linux::StreamAddress const & address : addresses ) {
         try {
            sources.emplace_back( activity, address );
         } catch ( Korv::RangeException const & error ) {
            throw CommandError( address.text() + ": " + error.what() );
         }
      }
      return options.watch ? watch( options, activity, sources, out )
                           : showOnce( options, activity, sources, out, err );
   } catch ( std::system_error const & error ) {
      throw CommandError( error.what() );
   }
}

} // namespace Command
