#include "command/run/RunArguments.h"

#include "mrp/platform/bridging/VlanId.h"

#include "command/Arguments.h"
#include "command/CommandError.h"
#include "command/report/Words.h"

#include <array>
#include <limits>

namespace Command {

namespace {

std::vector< std::string > splitAt( char separator, std::string const & text ) {
   std::vector< std::string > pieces( 1 );
   for ( char const c : text ) {
      if ( c == separator ) {
         pieces.emplace_back();
      } else {
         pieces.back() += c;
      }
   }
   return pieces;
}

U16 vlanArgument( std::string const & text ) {
   using Bridging::VlanId;
   return static_cast< U16 >( numberArgument( text, "VLAN", VlanId::first, VlanId::last ) );
}

template < class T >
T numberOf( std::string const & text, T lowest = 0, T highest = std::numeric_limits< T >::max() ) {
   return static_cast< T >( numberArgument( text, "number that can stand here", lowest, highest ) );
}

U8 srClassArgument( std::string const & text ) {
   if ( text.size() == 1 ) {
      for ( U8 id = 0; id <= srClassA; ++id ) {
         if ( srClassWord( id ) == text ) {
            return id;
         }
      }
   }
   throw CommandError( "'" + text + "' is no SR class: A to G" );
}

// A part of an option, and how its text is read into the option's value.
template < class Target >
struct Part {
   char const * name;
   bool isNeeded;
   void ( *read )( Target & target, std::string const & text );
};

using Text = std::string;
using Talker = TalkerOption;
using Domain = DomainOption;

constexpr std::array talkerParts{
   Part< Talker >{
      "stream", true,
      []( Talker & to, Text const & text ) { to.streamId = streamIdArgument( text ); } },
   Part< Talker >{
      "dest", true,
      []( Talker & to, Text const & text ) { to.destination = addressArgument( text ); } },
   Part< Talker >{
      "frame-size", true,
      []( Talker & to, Text const & text ) { to.frameSize = numberOf< U16 >( text ); } },
   Part< Talker >{
      "interval-frames", false,
      []( Talker & to, Text const & text ) { to.intervalFrames = numberOf< U16 >( text ); } },
   Part< Talker >{
      "class", false,
      []( Talker & to, Text const & text ) { to.srClassId = srClassArgument( text ); } },
   Part< Talker >{ "vlan", false,
                   []( Talker & to, Text const & text ) { to.vlan = vlanArgument( text ); } },
   Part< Talker >{
      "rank", false,
      []( Talker & to, Text const & text ) { to.rank = numberOf< U8 >( text, 0, 1 ) == 1; } },
   Part< Talker >{ "latency", false,
                   []( Talker & to, Text const & text ) { to.latency = numberOf< U32 >( text ); } },
};

constexpr std::array domainParts{
   Part< Domain >{
      "class", true,
      []( Domain & to, Text const & text ) { to.srClassId = srClassArgument( text ); } },
   Part< Domain >{
      "priority", true,
      []( Domain & to, Text const & text ) { to.priority = numberOf< U8 >( text, 0, 7 ); } },
   Part< Domain >{ "vlan", true,
                   []( Domain & to, Text const & text ) { to.vlan = vlanArgument( text ); } },
};

template < class Target, std::size_t n >
void readPart( Target & target, OptionPart const & part,
               std::array< Part< Target >, n > const & known ) {
   std::string names;
   for ( Part< Target > const & candidate : known ) {
      if ( part.name == candidate.name ) {
         return candidate.read( target, part.text );
      }
      names += names.empty() ? "" : ", ";
      names += candidate.name;
   }
   throw CommandError( "there is no '" + part.name + "' here, but " + names );
}

template < class Target, std::size_t n >
Target readParts( OptionParts const & parts, std::array< Part< Target >, n > const & known ) {
   Target target;
   std::set< std::string > seen;
   for ( OptionPart const & part : parts.parts ) {
      try {
         if ( !seen.insert( part.name ).second ) {
            throw CommandError( "it is there twice" );
         }
         readPart( target, part, known );
      } catch ( CommandError const & error ) {
         throw CommandError( part.place + part.name + ": " + error.what() );
      }
   }
   for ( Part< Target > const & part : known ) {
      if ( part.isNeeded && !seen.contains( part.name ) ) {
         throw CommandError( parts.place + part.name + " is missing" );
      }
   }
   return target;
}

} // namespace

std::set< U16 > vlansArgument( std::string const & text ) {
   std::set< U16 > vlans;
   for ( std::string const & piece : splitAt( ',', text ) ) {
      auto const dash = piece.find( '-' );
      U16 const first = vlanArgument( piece.substr( 0, dash ) );
      U16 const last = dash == std::string::npos ? first : vlanArgument( piece.substr( dash + 1 ) );
      if ( last < first ) {
         throw CommandError( "'" + piece + "' is no range of VLANs: it runs backwards" );
      }
      for ( U16 vlan = first; vlan <= last; ++vlan ) {
         vlans.insert( vlan );
      }
   }
   return vlans;
}

U64 streamIdArgument( std::string const & text ) {
   constexpr std::size_t bytes = 8;
   constexpr char const * digits = "0123456789abcdefABCDEF";
   auto const pieces = splitAt( ':', text );
   U64 streamId = 0;
   bool isStreamId = pieces.size() == bytes;
   for ( std::string const & piece : pieces ) {
      isStreamId =
         isStreamId && piece.size() == 2 && piece.find_first_not_of( digits ) == std::string::npos;
      streamId = isStreamId ? streamId << 8 | std::stoul( piece, nullptr, 16 ) : 0;
   }
   if ( !isStreamId ) {
      throw CommandError( "'" + text + "' is no stream id, such as 02:00:00:00:00:01:00:07" );
   }
   return streamId;
}

OptionParts partsOf( std::string const & text ) {
   OptionParts parts;
   for ( std::string const & piece : splitAt( ',', text ) ) {
      auto const equals = piece.find( '=' );
      if ( equals == std::string::npos ) {
         throw CommandError( "'" + piece + "' is no NAME=VALUE" );
      }
      parts.parts.push_back( { piece.substr( 0, equals ), piece.substr( equals + 1 ), "" } );
   }
   return parts;
}

TalkerOption talkerArgument( OptionParts const & parts ) { return readParts( parts, talkerParts ); }

DomainOption domainArgument( OptionParts const & parts ) { return readParts( parts, domainParts ); }

} // namespace Command
