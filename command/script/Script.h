// A scenario: a participant, and what happens to it at which time. docs/scenario-scripts.md is its
// form in a file.
//
// Plain data, and what is to be done as functions that refer to nothing but their own copies.
#pragma once

#include "mrp/platform/korv/Types.h"
#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/topology/MrpConfig.h"
#include "mrp/vocabulary/Mrp.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Command {

class Participant;

struct Script {
   // Interfaces stand by name: the process never forgets a Pelk::IntfId.
   struct Interface {
      std::string name;
      std::optional< Pelk::EthAddr > addr; // without one it has no entry
      std::optional< Korv::U32 > mtu;      // the same
   };
   struct AttributeName {
      std::string interface;
      Korv::U8 attributeType;
      Korv::U64 key;
   };
   struct Preloaded {
      AttributeName name;
      Mrp::MrpApplicantState applicantState;
      Mrp::MrpRegistrarState registrarState;
      std::vector< Korv::U8 > value; // as stored
   };
   using Setting = std::function< void( Mrp::MrpConfig & ) >;
   // Throws CommandError for what cannot be done as things stand.
   using Action = std::function< void( Participant & ) >;
   struct Step {
      Korv::Seconds at;
      Action run;
   };

   Mrp::MrpApplication application = Mrp::InvalidApplication;
   Pelk::EthAddr address; // the application's
   Korv::U16 ethertype = 0;
   Pelk::EthAddr bridgeAddress;
   std::vector< Interface > interfaces; // in the order of the file
   std::vector< Setting > config;       // before the start
   bool standby = false;
   std::vector< AttributeName > joinRefusals;
   std::vector< Preloaded > preload;
   std::vector< Step > steps; // in the order in which they run
   Korv::Seconds until = 0;

   std::vector< std::string > warnings; // a line each: of what has no effect, and why
};

// Throws CommandError, with the place in the script, for what is wrong with it.
Script readScript( std::string_view text );
// The same from a file, which errors and warnings name.
Script readScriptFile( std::string const & path );

// What a script may ask for at most. A result has to fit into memory, and a run has to come to its
// end.
namespace ScriptLimits {
inline constexpr std::size_t fileBytes = 32u << 20;
inline constexpr std::size_t interfaces = 1'024;
inline constexpr Korv::Seconds time = 8'640'000;   // 100 days
inline constexpr double configuredTime = 1e9;      // either sign
inline constexpr std::size_t happenings = 500'000; // frames and indications of a run
} // namespace ScriptLimits

} // namespace Command
