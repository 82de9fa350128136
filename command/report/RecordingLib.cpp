#include "command/report/RecordingLib.h"

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"

namespace Command {

Happening indicationOf( Mrp::MrpLib const & lib, Happening::Kind kind,
                        Mrp::MrpParameters const & indication ) {
   Happening happening{ kind, Korv::now(), indication.intfId(), {} };
   happening.attributeType = indication.attributeType();
   happening.attributeEvent = indication.attributeEvent();
   happening.attributeKey = lib.mrpSm()->parseContext()->attributeKey();
   Mrp::withAttributeKind( lib.application(), indication.attributeType(), [&]( auto kindOf ) {
      auto const & value = ( lib.*decltype( kindOf )::rx )();
      auto const * const bytes = reinterpret_cast< Korv::U8 const * >( &value );
      happening.bytes.assign( bytes, bytes + sizeof value );
   } );
   return happening;
}

bool RecordingLib::mrpJoinIndication( Mrp::MrpParameters const & indication ) {
   timeline_.push_back( indicationOf( *this, Happening::Kind::join, indication ) );
   return refused_.contains( Mrp::MrpAttribute( indication.intfId(), indication.attributeType(),
                                                timeline_.back().attributeKey ) );
}

void RecordingLib::mrpLeaveIndication( Mrp::MrpParameters const & indication ) {
   timeline_.push_back( indicationOf( *this, Happening::Kind::leave, indication ) );
}

} // namespace Command
