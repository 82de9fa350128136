#include "command/replay/SentCaptures.h"

#include "command/CommandError.h"

#include <cmath>
#include <filesystem>
#include <map>

namespace Command {

SentCaptures::SentCaptures( std::string const & directory,
                            std::vector< std::string > const & interfaces,
                            std::vector< std::string > const & inputs ) {
   namespace fs = std::filesystem;
   if ( directory.empty() ) {
      return;
   }
   std::error_code error;
   fs::create_directories( directory, error );
   if ( error ) {
      throw CommandError( directory + ": cannot be made: " + error.message() );
   }
   for ( std::string const & interface : interfaces ) {
      if ( interface.find( '/' ) != std::string::npos ) {
         throw CommandError( "--out: " + interface + " cannot name a file" );
      }
      fs::path const path = fs::path( directory ) / ( interface + ".pcap" );
      for ( std::string const & input : inputs ) {
         if ( fs::equivalent( path, input, error ) ) {
            throw CommandError( input + ": would be overwritten by --out " + directory );
         }
      }
      files_.push_back( { interface, path.string() } );
   }
}

void SentCaptures::write( Report const & report, Nanoseconds start ) const {
   std::map< std::string, std::vector< CapturedFrame > > sent;
   for ( Happening const & happening : report.timeline ) {
      if ( happening.kind == Happening::Kind::said && !files_.empty() ) {
         Nanoseconds const since = std::llround( happening.time * nanosecondsPerSecond );
         sent[happening.intfId.stringValue()].push_back( { start + since, happening.bytes } );
      }
   }
   for ( File const & file : files_ ) {
      writeCapture( file.path, sent[file.interface] );
   }
}

} // namespace Command
