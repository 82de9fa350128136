// The document that `mrp ... --json` prints.
#include "command/Report.h"
#include "command/Words.h"

#include <nlohmann/json.hpp>

namespace Command {

namespace {

using Json = nlohmann::ordered_json;

Json indication( Happening const & happening ) {
   auto const event = static_cast< Mrp::MrpThreePackedEvent >( happening.attributeEvent );
   return { { "time", happening.time },
            { "interface", happening.intfId.stringValue() },
            { "kind", happening.kind == Happening::Kind::join ? "join" : "leave" },
            { "attributeType", happening.attributeType },
            { "attributeEvent", Mrp::stringValue( event ) },
            { "key", std::to_string( happening.attributeKey ) },
            { "value", hexText( happening.bytes ) } };
}

Json transmission( Happening const & happening ) {
   return { { "time", happening.time },
            { "interface", happening.intfId.stringValue() },
            { "frame", hexText( happening.bytes ) } };
}

Json attributeOf( Report::Attribute const & attribute ) {
   return { { "interface", attribute.interface },
            { "attributeType", attribute.attributeType },
            { "key", std::to_string( attribute.key ) },
            { "applicantState", Mrp::stringValue( attribute.applicantState ) },
            { "registrarState", Mrp::stringValue( attribute.registrarState ) },
            { "value", hexText( attribute.value ) },
            { "committed", attribute.committed } };
}

} // namespace

void writeJson( Report const & report, std::ostream & out ) {
   Json interfaces = Json::array();
   for ( auto const & interface : report.interfaces ) {
      interfaces.push_back( { { "name", interface.name },
                              { "received", interface.received },
                              { "transmitted", interface.transmitted } } );
   }
   Json counters = Json::object();
   for ( auto const & [name, value] : report.counters ) {
      counters[name] = value;
   }
   Json indications = Json::array();
   Json transmitted = Json::array();
   for ( Happening const & happening : report.timeline ) {
      switch ( happening.kind ) {
      case Happening::Kind::heard: break;
      case Happening::Kind::said: transmitted.push_back( transmission( happening ) ); break;
      case Happening::Kind::join:
      case Happening::Kind::leave: indications.push_back( indication( happening ) ); break;
      }
   }
   Json attributes = Json::array();
   for ( auto const & attribute : report.attributes ) {
      attributes.push_back( attributeOf( attribute ) );
   }
   Json const document = { { "application", Mrp::stringValue( report.application ) },
                           { "interfaces", std::move( interfaces ) },
                           { "counters", std::move( counters ) },
                           { "indications", std::move( indications ) },
                           { "attributes", std::move( attributes ) },
                           { "transmitted", std::move( transmitted ) } };
   out << document.dump( 2, ' ', false, Json::error_handler_t::replace ) << '\n';
}

} // namespace Command
