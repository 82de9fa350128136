// A terminal's picture of lines that change, as the characters that draw it.
#pragma once

#include "command/show/ShowText.h"

#include <unordered_map>

namespace Command {

struct ScreenSize {
   std::size_t rows = 24;
   std::size_t columns = 80;
};

// Each picture is drawn over the one before it. Lines that were not in that one stand out for a
// moment; blanks do not count, which come and go with the widths of columns.
class ShowFrame {
 public:
   static constexpr Korv::Seconds moment = 1.5;

   // The head on the first line, then as many lines as there is room for, and how many there are
   // above and below them.
   std::string picture( std::string const & head, ShowLines const & lines, ScreenSize size,
                        Korv::Seconds now );
   // So many lines down, or up; as far as there are any.
   void scroll( long lines ) { top_ += lines; }
   // Some line stands out that need not any more.
   bool isStale( Korv::Seconds now ) const { return now >= nextEnd_; }

 private:
   std::unordered_map< std::string, Korv::Seconds > since_; // when each line came
   long top_ = 0;                                           // of the lines, the first that is shown
   Korv::Seconds nextEnd_ = Korv::never;
   bool isFirst_ = true;
};

} // namespace Command
