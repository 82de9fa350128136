// What `mrp run` can be told, on the command line and in a file, described once.
#pragma once

#include "mrp/platform/linux/StreamSocket.h"
#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/vocabulary/Mrp.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace Command {

using Korv::U16;
using Korv::U32;
using Korv::U64;
using Korv::U8;

struct TalkerOption {
   std::optional< U64 > streamId;
   std::optional< Pelk::EthAddr > destination;
   std::optional< U16 > vlan; // without it that of the class
   std::optional< U16 > frameSize;
   U16 intervalFrames = 1;
   U8 srClassId = 6; // class A
   bool rank = true;
   U32 latency = 0; // in nanoseconds
};

struct DomainOption {
   std::optional< U8 > srClassId;
   std::optional< U8 > priority;
   std::optional< U16 > vlan;
};

enum class LogTarget : U8 {
   errors,        // MRP_ERROR alone, on standard error: joins and leaves are printed anyway
   standardError, // all three
   syslog,
   none
};

// What --socket says for no mirror stream.
inline constexpr char const * noSocket = "none";

// As far as they were given.
struct RunOptions {
   std::optional< Mrp::MrpApplication > application;
   std::optional< Pelk::EthAddr > address;
   std::optional< U16 > ethertype;
   std::optional< std::set< U16 > > declare;
   std::optional< bool > bridge;
   std::optional< std::vector< TalkerOption > > talkers;
   std::optional< std::set< U64 > > listeners;
   std::optional< std::vector< DomainOption > > domains;
   std::optional< Korv::Seconds > leaveTime;
   std::optional< Korv::Seconds > leaveAllTime;
   std::optional< bool > json;
   std::optional< std::vector< std::string > > interfaces;
   std::optional< LogTarget > log;
   std::optional< std::string > trace;
   std::optional< std::string > ring;
   std::optional< std::string > socket; // "none", or what streamAddressArgument takes
   std::optional< Linux::StreamAddress > metrics;

   // Takes what was not given from the others, each option as a whole.
   void fillFrom( RunOptions const & others );
};

// An option that has parts, each of them NAME=TEXT. A `place` goes in front of an error: in a file
// it says where, "a.toml:7: ", and on the command line it is empty.
struct OptionPart {
   std::string name;
   std::string text;
   std::string place;
};
struct OptionParts {
   std::vector< OptionPart > parts;
   std::string place; // of the option as a whole
};

// --NAME TEXT on the command line, NAME = TEXT in a file.
struct RunOption {
   char const * name;
   char const * typeName;    // null for a switch, of which the text is true or false
   char const * description; // with its default in brackets
   bool isList;              // it may be given several times, and adds up
   // Both throw CommandError. The second is null for an option without parts.
   void ( *read )( RunOptions & options, std::string const & text );
   void ( *readParts )( RunOptions & options, OptionParts const & parts );
};

// All of them. The one named `interfaces` has no name on the command line.
std::span< RunOption const > runOptions();

} // namespace Command
