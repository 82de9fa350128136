#include "command/report/Json.h"

namespace Command {

Json countersJson( std::vector< std::pair< std::string, Korv::U64 > > const & counters ) {
   Json all = Json::object();
   for ( auto const & [name, value] : counters ) {
      all[name] = value;
   }
   return all;
}

Json attributeJson( Report::Attribute const & attribute ) {
   return { { "interface", attribute.interface },
            { "attributeType", attribute.attributeType },
            { "key", std::to_string( attribute.key ) },
            { "applicantState", Mrp::stringValue( attribute.applicantState ) },
            { "registrarState", Mrp::stringValue( attribute.registrarState ) } };
}

} // namespace Command
