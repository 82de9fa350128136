#include "command/script/ScriptContext.h"

namespace Command {

void ScriptContext::mention( ScriptNode const & node, std::string const & interface ) {
   if ( interfaces_.insert( interface ).second ) {
      warn( node, "there is no interface '" + interface + "' in this script" );
   }
}

std::string ScriptContext::interface( ScriptNode const & node ) {
   std::string const name = node.text();
   mention( node, name );
   return name;
}

Korv::U8 ScriptContext::attributeType( ScriptNode const & node ) const {
   constexpr Korv::U8 highest = 255;
   switch ( application_ ) {
   case Mrp::MSRP: return node.nameOrNumber< Mrp::MsrpAttrType >( highest );
   case Mrp::MVRP: return node.nameOrNumber< Mrp::MvrpAttrType >( highest );
   default: return node.whole< Korv::U8 >();
   }
}

} // namespace Command
