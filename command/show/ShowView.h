// What `mrp show` tells of a participant, as plain data taken from a mirror of what it publishes.
#pragma once

#include "mrp/observer/Mirror.h"

#include "command/show/ShowFilter.h"

#include <optional>

namespace Command {

// One participant. Names that come from the stream are printable.
struct ShowView {
   // Of an interface and type, whatever the states that are asked for.
   struct Type {
      Korv::U8 attributeType;
      std::optional< Korv::Seconds > leaveAllPeriod; // the one drawn last
      Korv::U64 declared = 0;                        // the applicant is no observer
      Korv::U64 registered = 0;                      // IN
      Korv::U64 leaving = 0;                         // LV
   };
   struct Interface {
      std::string name;
      // The times in force there. Own: the interface overrides the participant's.
      Korv::Seconds leaveTime = 0;
      Korv::Seconds leaveAllTime = 0;
      bool ownLeaveTime = false;
      bool ownLeaveAllTime = false;
      std::vector< Type > types; // ascending
   };

   Mrp::MrpApplication application = Mrp::InvalidApplication;
   bool timersEnabled = true;
   bool mrpFlooding = false;
   Korv::Seconds leaveTime = 0;
   Korv::Seconds leaveAllTime = 0;
   Korv::Seconds txLeaveAllExpiryTime = 0;
   std::vector< Interface > interfaces;                         // by name
   std::vector< std::pair< std::string, Korv::U64 > > counters; // all of them
   std::vector< Report::Attribute > attributes;                 // by interface, type and key
};

// One for each application that is published; one without an application if none is.
std::vector< ShowView > showViews( MrpObserver::Mirror const & mirror, ShowFilter const & filter );

// A stream, and what it has brought.
struct ShowStream {
   std::string address;
   bool connected = false;
   std::string problem;  // why it is not connected
   bool isKnown = false; // there has been a copy: what is shown may be old, but it is something
   std::vector< ShowView > views;
};

} // namespace Command
