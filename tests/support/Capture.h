// Logs, traces and ring records of a stretch of a test, for the lifetime of the object. One of a
// kind at a time.
#pragma once

#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Log.h"
#include "mrp/platform/sornlog/Sornlog.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

using Lines = std::vector< std::string >;

// "MRP_ERROR: Unidentified attribute type 0 received on Ethernet1"
class LogCapture {
 public:
   LogCapture() {
      lines_.clear();
      constexpr double unlimited = 1e9;
      Korv::logRateIs( { unlimited, unlimited } );
      Korv::logSinkIs( []( Korv::LogHandle const & handle, std::string const & text ) {
         lines_.push_back( std::string( handle.name() ) + ": " + text );
      } );
   }
   ~LogCapture() {
      Korv::logSinkIs( nullptr );
      Korv::logRateIs( {} );
   }
   LogCapture( LogCapture const & ) = delete;
   LogCapture & operator=( LogCapture const & ) = delete;

   Lines const & lines() const { return lines_; }
   // Of one handle, without its name.
   Lines of( std::string const & handle ) const {
      Lines found;
      for ( std::string const & line : lines_ ) {
         if ( line.starts_with( handle + ": " ) ) {
            found.push_back( line.substr( handle.size() + 2 ) );
         }
      }
      return found;
   }

 private:
   static inline Lines lines_;
};

// Lines of the trace handle "Mrp" with these levels on: bit n for level n.
class TraceCapture {
 public:
   explicit TraceCapture( Korv::U32 levels = ~0u ) {
      lines_.clear();
      Korv::traceSinkIs( []( auto const &, Korv::U32, auto, std::string const & text ) {
         lines_.push_back( text );
      } );
      Mrp::mrpTrace.levelsIs( levels );
   }
   ~TraceCapture() {
      Mrp::mrpTrace.levelsIs( 0 );
      Korv::traceSinkIs( nullptr );
   }
   TraceCapture( TraceCapture const & ) = delete;
   TraceCapture & operator=( TraceCapture const & ) = delete;

   Lines const & lines() const { return lines_; }

 private:
   static inline Lines lines_;
};

// Records of the ring buffer as text: of these sites, or of all.
class RingCapture : public Sornlog::File {
 public:
   explicit RingCapture( std::vector< Sornlog::Site const * > sites = {} )
      : sites_( std::move( sites ) ) {
      Sornlog::fileIs( this );
   }
   ~RingCapture() override { Sornlog::fileIs( nullptr ); }

   void write( Sornlog::Site const & site,
               std::span< Sornlog::Argument const > arguments ) override {
      if ( sites_.empty() || std::ranges::find( sites_, &site ) != sites_.end() ) {
         lines_.push_back( Sornlog::text( site, arguments ) );
      }
   }
   Lines taken() { return std::exchange( lines_, {} ); }

 private:
   std::vector< Sornlog::Site const * > sites_;
   Lines lines_;
};

} // namespace TestSupport
