#include "command/replay/ReplayCommand.h"

#include "command/CommandError.h"
#include "command/replay/ParticipantReport.h"
#include "command/replay/Progress.h"
#include "command/replay/SentCaptures.h"
#include "command/report/WellKnown.h"

#include <algorithm>
#include <set>

namespace Command {

namespace {

constexpr Korv::U32 mtu = 1500;
constexpr Korv::U64 firstAddress = 0x0200'0000'0001;
constexpr Pelk::EthAddr bridgeAddress( 0x02, 0, 0, 0, 0, 0 );

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

SentCaptures sentCaptures( ReplayOptions const & options ) {
   std::vector< std::string > interfaces;
   std::vector< std::string > inputs;
   for ( NamedCapture const & capture : options.captures ) {
      interfaces.push_back( capture.interface );
      inputs.push_back( capture.path );
   }
   return SentCaptures( options.outDirectory, interfaces, inputs );
}

ParticipantSettings settingsOf( ReplayOptions const & options ) {
   ParticipantSettings settings{
      options.application,
      options.address.value_or( wellKnownAddress( options.application ) ),
      options.ethertype.value_or( wellKnownEthertype( options.application ) ),
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

// Captures that are months apart have a wrong time in them, and the LeaveAlls of that long a replay
// would fill the memory.
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
   SentCaptures const sent = sentCaptures( options );

   Participant participant( settings );
   for ( auto const & interface : settings.interfaces ) {
      participant.lib().mrpInterfaceEnable( interface.intfId );
   }
   run( participant, arrivals, start, end );

   Report const report = gatherReport( participant );
   sent.write( report, start );
   ( options.json ? writeJson : writeText )( report, out );
   return 0;
}

} // namespace Command
