// Logs, traces and ring records of a stretch of a test, for the lifetime of the object. One at a
// time.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/sornlog/Sornlog.h"

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

// "MRP_ERROR: Unidentified attribute type 0 received on Ethernet1"
class LogCapture {
 public:
   LogCapture();
   ~LogCapture();
   LogCapture( LogCapture const & ) = delete;
   LogCapture & operator=( LogCapture const & ) = delete;

   std::vector< std::string > const & lines() const;
   // Of one handle, without its name.
   std::vector< std::string > of( std::string const & handle ) const;
};

// Lines of the trace handle "Mrp" with these levels on: bit n for level n.
class TraceCapture {
 public:
   explicit TraceCapture( Korv::U32 levels = ~0u );
   ~TraceCapture();
   TraceCapture( TraceCapture const & ) = delete;
   TraceCapture & operator=( TraceCapture const & ) = delete;

   std::vector< std::string > const & lines() const;
   bool has( std::string const & line ) const;
};

// Records of the ring buffer as text: of these sites, or of all.
class RingCapture : public Sornlog::File {
 public:
   explicit RingCapture( std::vector< Sornlog::Site const * > sites = {} );
   ~RingCapture() override;

   void write( Sornlog::Site const & site,
               std::span< Sornlog::Argument const > arguments ) override;
   std::vector< std::string > taken() { return std::exchange( lines_, {} ); }

 private:
   std::vector< Sornlog::Site const * > sites_;
   std::vector< std::string > lines_;
};

} // namespace TestSupport
