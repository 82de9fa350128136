// What the parts of a script are read against: what its head has said.
#pragma once

#include "mrp/vocabulary/Mrp.h"

#include "command/script/ScriptNode.h"

#include <set>

namespace Command {

class ScriptContext {
 public:
   ScriptContext( Mrp::MrpApplication application, std::set< std::string > interfaces )
      : application_( application ), interfaces_( std::move( interfaces ) ) {}

   Mrp::MrpApplication application() const { return application_; }
   std::vector< std::string > const & warnings() const { return warnings_; }
   void warn( ScriptNode const & node, std::string const & what ) {
      warnings_.push_back( node.place() + ": " + what );
   }

   // An interface's name. One that the script does not have is warned of: it is no error, but
   // seldom what was meant.
   std::string interface( ScriptNode const & node );
   void mention( ScriptNode const & node, std::string const & interface );
   // The number of an attribute type, or its name in the application.
   Korv::U8 attributeType( ScriptNode const & node ) const;

 private:
   Mrp::MrpApplication application_;
   std::set< std::string > interfaces_;
   std::vector< std::string > warnings_;
};

} // namespace Command
