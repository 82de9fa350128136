// The result of a run on the virtual clock, as plain data, with its two forms: one JSON document
// for programs, and a text for people.
#pragma once

#include "mrp/vocabulary/Mrp.h"

#include "command/report/ReportInside.h"
#include "command/report/Timeline.h"

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Mrp {
class MrpAttrDatabase;
class MrpSm;
} // namespace Mrp

namespace Command {

struct Report {
   struct Interface {
      std::string name;
      Korv::U64 received = 0; // past the filter
      Korv::U64 transmitted = 0;
      Korv::U64 heldBack = 0; // by the filter
   };
   struct Attribute {
      std::string interface;
      Korv::U8 attributeType;
      Korv::U64 key;
      Mrp::MrpApplicantState applicantState;
      Mrp::MrpRegistrarState registrarState;
      std::vector< Korv::U8 > value; // as stored
      bool committed;                // false: of a pending copy
   };

   Mrp::MrpApplication application = Mrp::InvalidApplication;
   std::vector< Interface > interfaces; // in the order in which they were given
   // All of them, by name; none in standby, where there are none.
   std::vector< std::pair< std::string, Korv::U64 > > counters;
   Timeline timeline;
   // Those that the machines see, by interface name, type and key: a pending copy, or else a
   // committed attribute that is not marked for deletion.
   std::vector< Attribute > attributes;

   // Of a script only.
   std::optional< ReportInside > inside;
   std::optional< std::string > aborted; // why the engine gave up
};

// An attribute as it stands in a tree of attributes, or as a pending copy.
Report::Attribute attributeOf( Mrp::MrpAttribute const & name,
                               Mrp::MrpAttrDatabase const & attribute, bool committed );
// The attributes alone; the application is there already.
void addAttributes( Report & report, Mrp::MrpSm const & sm );

// One document; its members and their order do not depend on what there is.
void writeJson( Report const & report, std::ostream & out );

// What happened, a line a frame; then tables of what there is.
void writeText( Report const & report, std::ostream & out );
// Its tables of attributes alone.
void writeAttributes( Report const & report, std::ostream & out );

// For whoever tells of a participant as it goes, one line each: a member of the document's
// `indications`, and its `attributes` with the time.
void writeIndicationLine( Happening const & indication, std::ostream & out );
void writeAttributesLine( Report const & report, Korv::Seconds time, std::ostream & out );
void writeMissingLine( std::size_t lines, Korv::Seconds time, std::ostream & out );

} // namespace Command
