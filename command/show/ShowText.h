// What people see of a participant: lines, with tables that fit a width.
#pragma once

#include "command/show/ShowView.h"

#include <ostream>
#include <span>

namespace Command {

struct ShowLine {
   enum class Kind : Korv::U8 { plain, heading };

   std::string text;
   Kind kind = Kind::plain;
};
using ShowLines = std::vector< ShowLine >;

// One participant after the other. What is too wide of an attribute goes on in lines of its own,
// below its row.
ShowLines showLines( ShowStream const & stream, std::size_t width );

// All of them, with an empty line in between.
void writeShowText( std::span< ShowStream const > streams, std::size_t width, std::ostream & out );

} // namespace Command
