#include "command/ReplayCommand.h"

#include "command/CommandError.h"
#include "command/Participant.h"
#include "command/Progress.h"
#include "command/Report.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

namespace Command {

namespace {

constexpr Korv::U32 mtu = 1500;
constexpr Korv::U64 firstAddress = 0x0200'0000'0001;
constexpr Pelk::EthAddr bridgeAddress( 0x02, 0, 0, 0, 0, 0 );

// What IEEE 802.1Q assigns: tables 8-1 and 10-1 for addresses, 10-2 for types.
constexpr Pelk::EthAddr mvrpAddress( 0x01, 0x80, 0xC2, 0x00, 0x00, 0x21 );
constexpr Pelk::EthAddr msrpAddress( 0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E );
constexpr Korv::U16 mvrpEthertype = 0x88F5;
constexpr Korv::U16 msrpEthertype = 0x22EA;

Korv::Seconds inSeconds( Nanoseconds time ) {
   return static_cast< Korv::Seconds >( time ) / nanosecondsPerSecond;
}

void checkNames( std::vector< NamedCapture > const & captures ) {
   std::set< std::string > names;
   for ( NamedCapture const & capture : captures ) {
      if ( !names.insert( capture.interface ).second ) {
         throw CommandError( "two captures for the interface " + capture.interface +
                             ": name each, as NAME=FILE" );
      }
   }
}

// The directory, with a file for each interface; none of them may be a capture that was given.
std::vector< std::filesystem::path > outputFiles( ReplayOptions const & options ) {
   namespace fs = std::filesystem;
   std::vector< fs::path > files;
   if ( options.outDirectory.empty() ) {
      return files;
   }
   std::error_code error;
   fs::create_directories( options.outDirectory, error );
   if ( error ) {
      throw CommandError( options.outDirectory + ": cannot be made: " + error.message() );
   }
   for ( NamedCapture const & named : options.captures ) {
      files.push_back( fs::path( options.outDirectory ) / ( named.interface + ".pcap" ) );
      for ( NamedCapture const & capture : options.captures ) {
         if ( fs::equivalent( files.back(), capture.path, error ) ) {
            throw CommandError( capture.path + ": would be overwritten by --out " +
                                options.outDirectory );
         }
      }
   }
   return files;
}

ParticipantSettings settingsOf( ReplayOptions const & options ) {
   bool const isMvrp = options.application == Mrp::MVRP;
   ParticipantSettings settings{
      options.application,
      options.address.value_or( isMvrp ? mvrpAddress : msrpAddress ),
      options.ethertype.value_or( isMvrp ? mvrpEthertype : msrpEthertype ),
      bridgeAddress,
      {} };
   Korv::U64 address = firstAddress;
   for ( NamedCapture const & capture : options.captures ) {
      settings.interfaces.push_back(
         { Pelk::IntfId( capture.interface ), Pelk::EthAddr::fromNumber( address++ ), mtu } );
   }
   return settings;
}

// The frames of all captures in the order of their times; those of one time in the order of the
// captures, and of the file within one.
struct Arrival {
   Pelk::IntfId intfId;
   CapturedFrame const * frame;
};
std::vector< Arrival > arrivalsOf( std::vector< Capture > const & captures,
                                   ParticipantSettings const & settings ) {
   std::vector< Arrival > arrivals;
   for ( std::size_t i = 0; i < captures.size(); ++i ) {
      for ( CapturedFrame const & frame : captures[i].frames ) {
         arrivals.push_back( { settings.interfaces[i].intfId, &frame } );
      }
   }
   std::ranges::stable_sort( arrivals, {},
                             []( Arrival const & arrival ) { return arrival.frame->time; } );
   return arrivals;
}

// Some months of LeaveAlls fill the memory, and what lasts that long has a wrong time in it.
void checkDuration( Nanoseconds duration ) {
   constexpr Nanoseconds day = 86'400 * nanosecondsPerSecond;
   constexpr Nanoseconds longest = 100;
   if ( duration > longest * day ) {
      throw CommandError( "from the earliest frame to the end of the replay it is " +
                          std::to_string( duration / day ) + " days: at most " +
                          std::to_string( longest ) + " can be replayed" );
   }
}

// Delivers all frames at their times, and shows how far it has come if that takes long.
void run( Participant & participant, std::vector< Arrival > const & arrivals, Nanoseconds start,
          Nanoseconds end ) {
   constexpr Nanoseconds stride = 10'000 * nanosecondsPerSecond;
   Progress progress;
   Nanoseconds now = 0;
   auto const advanceTo = [&]( Nanoseconds time ) {
      while ( now < time ) {
         now = std::min( time, now + stride );
         participant.advanceTo( inSeconds( now ) );
         progress.doneIs( inSeconds( now ) / inSeconds( end ) );
      }
   };
   participant.advanceTo( 0 );
   for ( Arrival const & arrival : arrivals ) {
      advanceTo( arrival.frame->time - start );
      participant.deliver( arrival.intfId, arrival.frame->bytes );
   }
   advanceTo( end );
}

// What the interface sent, from the time that is the participant's 0.
std::vector< CapturedFrame > sentFrames( Report const & report, std::string const & interface,
                                         Nanoseconds start ) {
   std::vector< CapturedFrame > frames;
   for ( Happening const & happening : report.timeline ) {
      if ( happening.kind == Happening::Kind::said &&
           happening.intfId.stringValue() == interface ) {
         Nanoseconds const since = std::llround( happening.time * nanosecondsPerSecond );
         frames.push_back( { start + since, happening.bytes } );
      }
   }
   return frames;
}

} // namespace

int replay( ReplayOptions const & options, std::ostream & out, std::ostream & err ) {
   checkNames( options.captures );
   std::vector< Capture > captures;
   for ( NamedCapture const & named : options.captures ) {
      captures.push_back( readCapture( named.path ) );
      for ( std::string const & warning : captures.back().warnings ) {
         err << "mrp: warning: " << warning << '\n';
      }
   }

   ParticipantSettings const settings = settingsOf( options );
   auto const arrivals = arrivalsOf( captures, settings );
   Nanoseconds const start = arrivals.empty() ? 0 : arrivals.front().frame->time;
   Nanoseconds const last = arrivals.empty() ? 0 : arrivals.back().frame->time - start;

   Nanoseconds const end = last + options.tail;
   checkDuration( end );
   auto const files = outputFiles( options );

   Participant participant( settings );
   for ( auto const & interface : settings.interfaces ) {
      participant.lib().mrpInterfaceEnable( interface.intfId );
   }
   run( participant, arrivals, start, end );

   Report const report = gatherReport( participant );
   for ( std::size_t i = 0; i < files.size(); ++i ) {
      writeCapture( files[i].string(), sentFrames( report, options.captures[i].interface, start ) );
   }
   ( options.json ? writeJson : writeText )( report, out );
   return 0;
}

} // namespace Command
