// Where `mrp run` prints: whoever reads it may be slow, stop reading, or go, and the participant is
// to take part all the same.
#pragma once

#include "mrp/platform/korv/Clock.h"
#include "mrp/platform/linux/Descriptor.h"

#include <functional>
#include <ostream>
#include <string>

namespace Command {

// A pipe, a socket or a terminal gets as much as it takes at once; the rest waits here, and is
// offered again after a moment. While too much waits whole texts are left out, until half of it has
// gone: then a notice stands in their place. Whatever else the stream is (a file, a terminal of
// another user) is written as it comes.
//
// Owned by RunLines.
class RunOutput {
 public:
   // A text is taken while less than this waits, however long it is itself.
   static constexpr std::size_t bound = 1024 * 1024;

   // The line that says how many are left out.
   using Notice = std::function< std::string( std::size_t lines ) >;

   // `closed` is called, from within a notification, when nothing more can be written.
   RunOutput( std::ostream & out, Notice notice, std::function< void() > closed );

   // A line, or several that belong together.
   void print( std::string const & text );
   // What can be written at once of what waits.
   void write();

 private:
   bool hasRoom() const;
   void fail();

   std::ostream & out_;
   Notice notice_;
   std::function< void() > closed_;
   Linux::Descriptor unwaiting_;
   int descriptor_; // what is written to; below 0: `out_` itself
   std::string waiting_;
   std::size_t leftOut_ = 0; // lines
   Korv::CallbackTimer again_{ Korv::activityManager().clock(), [this] { write(); } };
};

} // namespace Command
