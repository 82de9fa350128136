#include "command/show/ShowJson.h"

#include "command/report/ValueRecord.h"
#include "command/report/Words.h"

#include <nlohmann/json.hpp>

namespace Command {

namespace {

using Json = nlohmann::ordered_json;

// ---- Values, with numbers as numbers: the tables have words for them ----------------------------

Json membersOf( Mrp::MvrpVlanAttribute const & vlan ) { return { { "vlan", vlan.vlanId() } }; }

Json membersOf( Mrp::MsrpTalkerAdvertiseAttribute const & talker ) {
   return { { "stream", streamIdWord( talker.streamId() ) },
            { "destination", talker.frame().dmac().stringValue() },
            { "vlan", talker.frame().vlanId() },
            { "maxFrameSize", talker.tSpec().maxFrameSize() },
            { "maxIntervalFrames", talker.tSpec().maxIntervalFrames() },
            { "priority", talker.priorityAndRank().priority() },
            { "rank", Korv::U32{ talker.priorityAndRank().rank() } },
            { "accumulatedLatency", talker.accumulatedLatency() } };
}

Json membersOf( Mrp::MsrpTalkerFailedAttribute const & talker ) {
   Json members = membersOf( talker.talkerAdvertiseAttribute() );
   members["bridge"] = bridgeIdWord( talker.failureInformation().bridgeId() );
   members["failureCode"] = talker.failureInformation().failureCode();
   return members;
}

Json membersOf( Mrp::MsrpListenerAttribute const & listener ) {
   return { { "stream", streamIdWord( listener.streamId() ) },
            { "declaration", Mrp::stringValue( listener.listenerEvent() ) } };
}

Json membersOf( Mrp::MsrpDomainAttribute const & domain ) {
   return { { "srClass", domain.srClassId() },
            { "priority", domain.srClassPriority() },
            { "vlan", domain.srClassVID() } };
}

// ---- The document -------------------------------------------------------------------------------

Json attributeOf( Mrp::MrpApplication application, Report::Attribute const & attribute ) {
   Json members = Json::object();
   withValue( application, attribute.attributeType, attribute.value,
              [&]( auto, auto const & value ) { members = membersOf( value ); } );
   return { { "interface", attribute.interface },
            { "attributeType", attribute.attributeType },
            { "key", std::to_string( attribute.key ) },
            { "applicantState", Mrp::stringValue( attribute.applicantState ) },
            { "registrarState", Mrp::stringValue( attribute.registrarState ) },
            { "applicant", stateWord( attribute.applicantState ) },
            { "registrar", stateWord( attribute.registrarState ) },
            { "value", hexText( attribute.value ) },
            { "fields", std::move( members ) } };
}

Json interfaceOf( Mrp::MrpApplication application, ShowView::Interface const & interface ) {
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

Json participantOf( ShowStream const & stream, ShowView const & view ) {
   Json interfaces = Json::array();
   for ( auto const & interface : view.interfaces ) {
      interfaces.push_back( interfaceOf( view.application, interface ) );
   }
   Json counters = Json::object();
   for ( auto const & [name, value] : view.counters ) {
      counters[name] = value;
   }
   Json attributes = Json::array();
   for ( auto const & attribute : view.attributes ) {
      attributes.push_back( attributeOf( view.application, attribute ) );
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
            { "counters", std::move( counters ) },
            { "attributes", std::move( attributes ) } };
}

} // namespace

void writeShowJson( std::span< ShowStream const > streams, JsonForm form, std::ostream & out ) {
   Json participants = Json::array();
   for ( ShowStream const & stream : streams ) {
      // One of which nothing is known yet has all members too, with nothing in them.
      for ( ShowView const & view : stream.isKnown ? stream.views : std::vector{ ShowView() } ) {
         participants.push_back( participantOf( stream, view ) );
      }
   }
   Json const document = { { "participants", std::move( participants ) } };
   out << document.dump( form == JsonForm::indented ? 2 : -1, ' ', false,
                         Json::error_handler_t::replace )
       << '\n';
}

} // namespace Command
