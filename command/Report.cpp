#include "command/Report.h"

#include "command/Participant.h"

#include <algorithm>
#include <tuple>

namespace Command {

namespace {

Report::Attribute attributeOf( Mrp::MrpAttribute const & name,
                               Mrp::MrpAttrDatabase const & attribute, bool committed ) {
   auto const & stored = attribute.attributeValue();
   std::vector< Korv::U8 > value( stored.count() );
   for ( Korv::U32 i = 0; i < stored.count(); ++i ) {
      value[i] = stored.at( stored.position( i ) );
   }
   return { name.intfId().stringValue(),
            name.attributeType(),
            name.attributeVal(),
            attribute.applicantState(),
            attribute.registrarState(),
            std::move( value ),
            committed };
}

void addCommitted( Report & report, Mrp::MrpSm const & sm, Pelk::IntfId intfId,
                   Mrp::MrpIntfTypeApplicant const & type ) {
   for ( auto attribute = type.mrpAttribute().walk(); attribute; ++attribute ) {
      Mrp::MrpAttribute const name( intfId, type.attributeType(), attribute.key() );
      if ( !sm.addPendingAttr().isMember( name ) && !sm.isDeletePending( name ) ) {
         report.attributes.push_back( attributeOf( name, *attribute.value(), true ) );
      }
   }
}

void addAttributes( Report & report, Mrp::MrpSm const & sm ) {
   if ( auto const * const tree = sm.mrpStatus()->application( report.application ) ) {
      for ( auto intf = tree->attrDatabase().walk(); intf; ++intf ) {
         for ( auto type = intf.value()->intfTypeApplicant().walk(); type; ++type ) {
            addCommitted( report, sm, intf.key(), *type.value() );
         }
      }
   }
   for ( auto pending = sm.addPendingAttr().walk(); pending; ++pending ) {
      report.attributes.push_back( attributeOf( pending.key(), *pending.value(), false ) );
   }
   auto const order = []( Report::Attribute const & a ) {
      return std::tie( a.interface, a.attributeType, a.key );
   };
   std::ranges::sort( report.attributes, {}, order );
}

Korv::U64 count( Timeline const & timeline, Pelk::IntfId intfId, Happening::Kind kind ) {
   return static_cast< Korv::U64 >( std::ranges::count_if( timeline, [&]( auto const & happening ) {
      return happening.intfId == intfId && happening.kind == kind;
   } ) );
}

} // namespace

Report gatherReport( Participant const & participant ) {
   Report report;
   report.application = participant.settings().application;
   report.timeline = participant.timeline();
   for ( auto const & interface : participant.settings().interfaces ) {
      Pelk::IntfId const intfId = interface.intfId;
      report.interfaces.push_back( { intfId.stringValue(),
                                     count( report.timeline, intfId, Happening::Kind::heard ),
                                     count( report.timeline, intfId, Happening::Kind::said ),
                                     participant.heldBack( intfId ) } );
   }
   Korv::forEachScalar( *participant.sm().mrpCounters(), [&]( char const * name, auto value ) {
      report.counters.emplace_back( name, value );
   } );
   addAttributes( report, participant.sm() );
   return report;
}

} // namespace Command
