// What programs see of participants: docs/showing.md has the form.
#pragma once

#include "command/show/ShowView.h"

#include <ostream>
#include <span>

namespace Command {

enum class JsonForm : Korv::U8 { indented, line };

// One document; its members do not depend on how many of anything there are.
void writeShowJson( std::span< ShowStream const > streams, JsonForm form, std::ostream & out );

} // namespace Command
