// The document that `mrp ... --json` prints.
#include "command/report/Report.h"
#include "command/report/Words.h"

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

Json attributesOf( Report const & report ) {
   Json attributes = Json::array();
   for ( auto const & attribute : report.attributes ) {
      attributes.push_back( attributeOf( attribute ) );
   }
   return attributes;
}

void addInside( Json & document, ReportInside const & inside ) {
   Json indexes = Json::array();
   for ( auto const & index : inside.attributeIndex ) {
      Json keys = Json::array();
      for ( Korv::U64 const key : index.keys ) {
         keys.push_back( std::to_string( key ) );
      }
      indexes.push_back( { { "interface", index.interface },
                           { "attributeType", index.attributeType },
                           { "keys", std::move( keys ) } } );
   }
   Json times = Json::array();
   for ( auto const & time : inside.leaveAllTime ) {
      times.push_back( { { "interface", time.interface },
                         { "attributeType", time.attributeType },
                         { "seconds", time.seconds } } );
   }
   Json context = Json::object();
   for ( auto const & [name, field] : inside.parseContext ) {
      std::visit( [&, &key = name]( auto const & value ) { context[key] = value; }, field );
   }
   document["attributeIndex"] = std::move( indexes );
   document["leaveAllTime"] = std::move( times );
   document["parseContext"] = std::move( context );
}

std::string text( Json const & json, int indent ) {
   return json.dump( indent, ' ', false, Json::error_handler_t::replace );
}

constexpr int oneLine = -1;

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
   Json document = { { "application", Mrp::stringValue( report.application ) },
                     { "interfaces", std::move( interfaces ) },
                     { "counters", std::move( counters ) },
                     { "indications", std::move( indications ) },
                     { "attributes", attributesOf( report ) },
                     { "transmitted", std::move( transmitted ) } };
   if ( report.inside ) {
      addInside( document, *report.inside );
   }
   if ( report.aborted ) {
      document["aborted"] = *report.aborted;
   }
   out << text( document, 2 ) << '\n';
}

void writeIndicationLine( Happening const & happening, std::ostream & out ) {
   out << text( indication( happening ), oneLine ) << '\n';
}

void writeAttributesLine( Report const & report, Korv::Seconds time, std::ostream & out ) {
   Json const line = {
      { "time", time }, { "kind", "attributes" }, { "attributes", attributesOf( report ) } };
   out << text( line, oneLine ) << '\n';
}

} // namespace Command
