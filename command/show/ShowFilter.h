// Which attributes `mrp show` shows. Of one option given several times any will do; of different
// ones all are asked for, and the states of the two machines count as different.
#pragma once

#include "command/report/Report.h"

#include <set>

namespace Command {

struct ShowFilter {
   // Empty: all.
   std::set< std::string > interfaces;
   std::set< std::pair< Mrp::MrpApplication, Korv::U8 > > types;
   std::set< Mrp::MrpApplicantState > applicantStates;
   std::set< Mrp::MrpRegistrarState > registrarStates;

   // The words of the tables, in any case, with hyphens for blanks if one likes: "talker-failed";
   // or a type's number, which is that type of every application. Throw CommandError with what
   // there is.
   void typeAdd( std::string const & text );
   void stateAdd( std::string const & text );

   bool hasInterface( std::string const & name ) const;
   bool hasType( Mrp::MrpApplication application, Korv::U8 attributeType ) const;
   bool hasStates( Mrp::MrpApplicantState applicant, Mrp::MrpRegistrarState registrar ) const;
};

} // namespace Command
