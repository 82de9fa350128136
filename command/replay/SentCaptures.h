// What each interface transmitted, as captures: the files of --out.
#pragma once

#include "command/replay/Captures.h"
#include "command/report/Report.h"

namespace Command {

class SentCaptures {
 public:
   // Makes the directory, which gets a file for each interface; an empty name stands for none of
   // it all. Throws CommandError if a file would be written over an input.
   SentCaptures( std::string const & directory, std::vector< std::string > const & interfaces,
                 std::vector< std::string > const & inputs );

   // `start` is the participant's time 0.
   void write( Report const & report, Nanoseconds start ) const;

 private:
   struct File {
      std::string interface;
      std::string path;
   };
   std::vector< File > files_;
};

} // namespace Command
