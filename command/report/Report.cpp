#include "command/report/Report.h"

#include "mrp/database/MrpAttrDatabase.h"
#include "mrp/frame/MrpSm.h"

#include <algorithm>
#include <tuple>

namespace Command {

namespace {

void addCommitted( Report & report, Mrp::MrpSm const & sm, Pelk::IntfId intfId,
                   Mrp::MrpIntfTypeApplicant const & type ) {
   for ( auto attribute = type.mrpAttribute().walk(); attribute; ++attribute ) {
      Mrp::MrpAttribute const name( intfId, type.attributeType(), attribute.key() );
      if ( !sm.addPendingAttr().isMember( name ) && !sm.isDeletePending( name ) ) {
         report.attributes.push_back( attributeOf( name, *attribute.value(), true ) );
      }
   }
}

} // namespace

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

} // namespace Command
