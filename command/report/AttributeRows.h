// Attributes as the rows of tables.
#pragma once

#include "command/report/Report.h"
#include "command/report/Words.h"

namespace Command {

// Attributes that follow on each other, with no value beside their name, share a row if they are in
// the same state.
struct AttributeRow {
   Report::Attribute const * first;
   Report::Attribute const * last;
   Fields fields; // of all of them: "10-13"
};

// In their order, which is that of interface, type and key.
std::vector< AttributeRow > attributeRows( Mrp::MrpApplication application,
                                           std::vector< Report::Attribute > const & attributes );

} // namespace Command
