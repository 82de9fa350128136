#include "tests/support/Capture.h"

#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Log.h"

#include <algorithm>

namespace TestSupport {

namespace {

std::vector< std::string > logLines_;
std::vector< std::string > traceLines_;

} // namespace

LogCapture::LogCapture() {
   logLines_.clear();
   constexpr double unlimited = 1e9;
   Korv::logRateIs( { unlimited, unlimited } );
   Korv::logSinkIs( []( Korv::LogHandle const & handle, std::string const & text ) {
      logLines_.push_back( std::string( handle.name() ) + ": " + text );
   } );
}
LogCapture::~LogCapture() {
   Korv::logSinkIs( nullptr );
   Korv::logRateIs( {} );
}

std::vector< std::string > const & LogCapture::lines() const { return logLines_; }

std::vector< std::string > LogCapture::of( std::string const & handle ) const {
   std::string const prefix = handle + ": ";
   std::vector< std::string > found;
   for ( std::string const & line : logLines_ ) {
      if ( line.starts_with( prefix ) ) {
         found.push_back( line.substr( prefix.size() ) );
      }
   }
   return found;
}

TraceCapture::TraceCapture( Korv::U32 levels ) {
   traceLines_.clear();
   Korv::traceSinkIs( []( Korv::TraceHelper const &, Korv::U32, Korv::SourceLocation,
                          std::string const & text ) { traceLines_.push_back( text ); } );
   Mrp::mrpTrace.levelsIs( levels );
}
TraceCapture::~TraceCapture() {
   Mrp::mrpTrace.levelsIs( 0 );
   Korv::traceSinkIs( nullptr );
}

std::vector< std::string > const & TraceCapture::lines() const { return traceLines_; }

bool TraceCapture::has( std::string const & line ) const {
   return std::ranges::find( traceLines_, line ) != traceLines_.end();
}

RingCapture::RingCapture( std::vector< Sornlog::Site const * > sites )
   : sites_( std::move( sites ) ) {
   Sornlog::fileIs( this );
}
RingCapture::~RingCapture() { Sornlog::fileIs( nullptr ); }

void RingCapture::write( Sornlog::Site const & site,
                         std::span< Sornlog::Argument const > arguments ) {
   if ( sites_.empty() || std::ranges::find( sites_, &site ) != sites_.end() ) {
      lines_.push_back( Sornlog::text( site, arguments ) );
   }
}

} // namespace TestSupport
