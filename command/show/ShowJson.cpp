#include "command/show/ShowJson.h"

#include "command/report/Json.h"
#include "command/report/ValueRecord.h"
#include "command/report/Words.h"

namespace Command {

namespace {

// Values have numbers as numbers, where the tables have words for them.

Json fieldsOf( Mrp::MvrpVlanAttribute const & vlan ) { return { { "vlan", vlan.vlanId() } }; }

Json fieldsOf( Mrp::MsrpTalkerAdvertiseAttribute const & talker ) {
   return { { "stream", streamIdWord( talker.streamId() ) },
            { "destination", talker.frame().dmac().stringValue() },
            { "vlan", talker.frame().vlanId() },
            { "maxFrameSize", talker.tSpec().maxFrameSize() },
            { "maxIntervalFrames", talker.tSpec().maxIntervalFrames() },
            { "priority", talker.priorityAndRank().priority() },
            { "rank", Korv::U32{ talker.priorityAndRank().rank() } },
            { "accumulatedLatency", talker.accumulatedLatency() } };
}

Json fieldsOf( Mrp::MsrpTalkerFailedAttribute const & talker ) {
   Json fields = fieldsOf( talker.talkerAdvertiseAttribute() );
   fields["bridge"] = bridgeIdWord( talker.failureInformation().bridgeId() );
   fields["failureCode"] = talker.failureInformation().failureCode();
   return fields;
}

Json fieldsOf( Mrp::MsrpListenerAttribute const & listener ) {
   return { { "stream", streamIdWord( listener.streamId() ) },
            { "declaration", Mrp::stringValue( listener.listenerEvent() ) } };
}

Json fieldsOf( Mrp::MsrpDomainAttribute const & domain ) {
   return { { "srClass", domain.srClassId() },
            { "priority", domain.srClassPriority() },
            { "vlan", domain.srClassVID() } };
}

Json shownAttributeJson( Mrp::MrpApplication application, Report::Attribute const & attribute ) {
   Json fields = Json::object();
   withValue( application, attribute.attributeType, attribute.value,
              [&]( auto, auto const & value ) { fields = fieldsOf( value ); } );
   Json members = attributeJson( attribute );
   members["applicant"] = stateWord( attribute.applicantState );
   members["registrar"] = stateWord( attribute.registrarState );
   members["value"] = hexText( attribute.value );
   members["fields"] = std::move( fields );
   return members;
}

Json interfaceJson( Mrp::MrpApplication application, ShowView::Interface const & interface ) {
   Json types = Json::array();
   for ( auto const & type : interface.types ) {
      types.push_back(
         { { "attributeType", type.attributeType },
           { "name", typeWord( application, type.attributeType ) },
           { "leaveAllPeriod", type.leaveAllPeriod ? Json( *type.leaveAllPeriod ) : Json() },
           { "declared", type.declared },
           { "registered", type.registered },
           { "leaving", type.leaving } } );
   }
   return { { "name", interface.name },
            { "leaveTime", interface.leaveTime },
            { "leaveTimeIsOwn", interface.ownLeaveTime },
            { "leaveAllTime", interface.leaveAllTime },
            { "leaveAllTimeIsOwn", interface.ownLeaveAllTime },
            { "types", std::move( types ) } };
}

Json participantJson( ShowStream const & stream, ShowView const & view ) {
   Json interfaces = Json::array();
   for ( auto const & interface : view.interfaces ) {
      interfaces.push_back( interfaceJson( view.application, interface ) );
   }
   Json attributes = Json::array();
   for ( auto const & attribute : view.attributes ) {
      attributes.push_back( shownAttributeJson( view.application, attribute ) );
   }
   return { { "socket", stream.address },
            { "connected", stream.connected },
            { "problem", stream.connected ? "" : stream.problem },
            { "application", Mrp::stringValue( view.application ) },
            { "config",
              { { "timersEnabled", view.timersEnabled },
                { "leaveTime", view.leaveTime },
                { "leaveAllTime", view.leaveAllTime },
                { "txLeaveAllExpiryTime", view.txLeaveAllExpiryTime },
                { "mrpFlooding", view.mrpFlooding } } },
            { "interfaces", std::move( interfaces ) },
            { "counters", countersJson( view.counters ) },
            { "attributes", std::move( attributes ) } };
}

} // namespace

void writeShowJson( std::span< ShowStream const > streams, JsonForm form, std::ostream & out ) {
   Json participants = Json::array();
   for ( ShowStream const & stream : streams ) {
      // One of which nothing is known yet has all members too, with nothing in them.
      for ( ShowView const & view : stream.isKnown ? stream.views : std::vector{ ShowView() } ) {
         participants.push_back( participantJson( stream, view ) );
      }
   }
   Json const document = { { "participants", std::move( participants ) } };
   out << jsonText( document, form == JsonForm::indented ? 2 : -1 ) << '\n';
}

} // namespace Command
