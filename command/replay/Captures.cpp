#include "command/replay/Captures.h"

#include "command/CommandError.h"

#include <pcap/pcap.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

namespace Command {

namespace {

// Times beyond what 32 bits of seconds hold are taken for damage; distances between times and
// sums with a duration then stay far from the ends of Nanoseconds.
constexpr std::int64_t secondsEnd = std::int64_t{ 1 } << 32;
// What libpcap itself calls the largest frame of Ethernet.
constexpr int largestFrame = 262'144;

struct ClosePcap {
   void operator()( pcap_t * pcap ) const { pcap_close( pcap ); }
};
using Pcap = std::unique_ptr< pcap_t, ClosePcap >;

std::optional< Nanoseconds > timeOf( pcap_pkthdr const & header ) {
   std::int64_t const seconds = header.ts.tv_sec;
   std::int64_t const nanoseconds = header.ts.tv_usec; // asked for with that precision
   if ( seconds < 0 || seconds >= secondsEnd || nanoseconds < 0 || nanoseconds >= secondsEnd ) {
      return {};
   }
   return seconds * nanosecondsPerSecond + nanoseconds;
}

// pcapng has a link type for each interface of the file. libpcap reads no file that mixes them
// and says so only when it meets the second one.
bool isOtherInterface( std::string const & error ) {
   return error.find( "an interface has" ) != std::string::npos;
}

std::string framesWord( std::size_t number ) {
   return std::to_string( number ) + ( number == 1 ? " frame" : " frames" );
}

} // namespace

Capture readCapture( std::string const & path ) {
   std::FILE * const stream = std::fopen( path.c_str(), "rb" );
   if ( !stream ) {
      throw CommandError( path + ": " + std::strerror( errno ) );
   }
   return readCapture( stream, path );
}

Capture readCapture( std::FILE * stream, std::string const & name ) {
   char why[PCAP_ERRBUF_SIZE] = "";
   Pcap const pcap(
      pcap_fopen_offline_with_tstamp_precision( stream, PCAP_TSTAMP_PRECISION_NANO, why ) );
   if ( !pcap ) {
      std::fclose( stream );
      throw CommandError( name + ": not a capture in pcap or pcapng format (" + why + ")" );
   }
   if ( int const type = pcap_datalink( pcap.get() ); type != DLT_EN10MB ) {
      char const * const known = pcap_datalink_val_to_name( type );
      throw CommandError( name + ": link type " + ( known ? known : std::to_string( type ) ) +
                          ", where Ethernet (EN10MB) is needed" );
   }

   Capture capture;
   auto const warn = [&]( std::string const & what ) {
      capture.warnings.push_back( name + ": " + what );
   };
   auto const warnOfEnd = [&]( std::string const & what ) {
      warn( what + "; what stands behind its first " + framesWord( capture.frames.size() ) +
            " is left out" );
   };
   std::size_t shortened = 0;
   pcap_pkthdr * header = nullptr;
   unsigned char const * bytes = nullptr;
   int status = 0;
   while ( ( status = pcap_next_ex( pcap.get(), &header, &bytes ) ) == 1 ) {
      auto const time = timeOf( *header );
      if ( !time ) {
         warnOfEnd( "damaged, a frame's time is out of range" );
         break;
      }
      capture.frames.push_back( { *time, { bytes, bytes + header->caplen } } );
      shortened += header->caplen < header->len ? 1 : 0;
   }
   if ( status == PCAP_ERROR ) {
      std::string const error = pcap_geterr( pcap.get() );
      if ( isOtherInterface( error ) ) {
         throw CommandError( name + ": " + error + ", where all must be alike" );
      }
      bool const isCut = error.find( "truncated" ) != std::string::npos;
      warnOfEnd( ( isCut ? "cut in the middle (" : "damaged (" ) + error + ")" );
   }
   if ( shortened > 0 ) {
      warn( framesWord( shortened ) +
            " captured in part, with a snapshot length that is too small" );
   }
   return capture;
}

void writeCapture( std::string const & path, std::span< CapturedFrame const > frames ) {
   bool const inMicroseconds = std::ranges::all_of(
      frames, []( CapturedFrame const & frame ) { return frame.time % 1000 == 0; } );
   Pcap const pcap( pcap_open_dead_with_tstamp_precision(
      DLT_EN10MB, largestFrame,
      inMicroseconds ? PCAP_TSTAMP_PRECISION_MICRO : PCAP_TSTAMP_PRECISION_NANO ) );
   if ( !pcap ) {
      throw CommandError( path + ": libpcap cannot write captures" );
   }
   // Opened here: libpcap takes "-" for standard output.
   std::FILE * const stream = std::fopen( path.c_str(), "wb" );
   if ( !stream ) {
      throw CommandError( path + ": cannot be written: " + std::strerror( errno ) );
   }
   pcap_dumper_t * const dumper = pcap_dump_fopen( pcap.get(), stream );
   if ( !dumper ) {
      std::fclose( stream );
      throw CommandError( path + ": cannot be written: " + pcap_geterr( pcap.get() ) );
   }
   for ( CapturedFrame const & frame : frames ) {
      pcap_pkthdr header{};
      header.ts.tv_sec = frame.time / nanosecondsPerSecond;
      header.ts.tv_usec = frame.time % nanosecondsPerSecond / ( inMicroseconds ? 1000 : 1 );
      header.caplen = header.len = static_cast< bpf_u_int32 >( frame.bytes.size() );
      pcap_dump( reinterpret_cast< unsigned char * >( dumper ), &header, frame.bytes.data() );
   }
   bool const written = pcap_dump_flush( dumper ) == 0 && std::ferror( stream ) == 0;
   std::string const why = written ? "" : std::strerror( errno );
   pcap_dump_close( dumper );
   if ( !written ) {
      throw CommandError( path + ": cannot be written: " + why );
   }
}

} // namespace Command
