// The document that `mrp ... --json` prints.
#include "command/report/Json.h"
#include "command/report/Words.h"

namespace Command {

namespace {

Json indicationJson( Happening const & happening ) {
   auto const event = static_cast< Mrp::MrpThreePackedEvent >( happening.attributeEvent );
   return { { "time", happening.time },
            { "interface", happening.intfId.stringValue() },
            { "kind", happening.kind == Happening::Kind::join ? "join" : "leave" },
            { "attributeType", happening.attributeType },
            { "attributeEvent", Mrp::stringValue( event ) },
            { "key", std::to_string( happening.attributeKey ) },
            { "value", hexText( happening.bytes ) } };
}

Json transmissionJson( Happening const & happening ) {
   return { { "time", happening.time },
            { "interface", happening.intfId.stringValue() },
            { "frame", hexText( happening.bytes ) } };
}

Json attributesJson( Report const & report ) {
   Json attributes = Json::array();
   for ( auto const & attribute : report.attributes ) {
      Json members = attributeJson( attribute );
      members["value"] = hexText( attribute.value );
      members["committed"] = attribute.committed;
      attributes.push_back( std::move( members ) );
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

constexpr int oneLine = -1;

} // namespace

void writeJson( Report const & report, std::ostream & out ) {
   Json interfaces = Json::array();
   for ( auto const & interface : report.interfaces ) {
      interfaces.push_back( { { "name", interface.name },
                              { "received", interface.received },
                              { "transmitted", interface.transmitted } } );
   }
   Json indications = Json::array();
   Json transmitted = Json::array();
   for ( Happening const & happening : report.timeline ) {
      switch ( happening.kind ) {
      case Happening::Kind::heard: break;
      case Happening::Kind::said: transmitted.push_back( transmissionJson( happening ) ); break;
      case Happening::Kind::join:
      case Happening::Kind::leave: indications.push_back( indicationJson( happening ) ); break;
      }
   }
   Json document = { { "application", Mrp::stringValue( report.application ) },
                     { "interfaces", std::move( interfaces ) },
                     { "counters", countersJson( report.counters ) },
                     { "indications", std::move( indications ) },
                     { "attributes", attributesJson( report ) },
                     { "transmitted", std::move( transmitted ) } };
   if ( report.inside ) {
      addInside( document, *report.inside );
   }
   if ( report.aborted ) {
      document["aborted"] = *report.aborted;
   }
   out << jsonText( document, 2 ) << '\n';
}

void writeIndicationLine( Happening const & happening, std::ostream & out ) {
   out << jsonText( indicationJson( happening ), oneLine ) << '\n';
}

void writeAttributesLine( Report const & report, Korv::Seconds time, std::ostream & out ) {
   Json const line = {
      { "time", time }, { "kind", "attributes" }, { "attributes", attributesJson( report ) } };
   out << jsonText( line, oneLine ) << '\n';
}

void writeMissingLine( std::size_t lines, Korv::Seconds time, std::ostream & out ) {
   Json const line = { { "time", time }, { "kind", "missing" }, { "lines", lines } };
   out << jsonText( line, oneLine ) << '\n';
}

} // namespace Command
