#include "command/report/RecordingLib.h"

#include "mrp/frame/MrpSm.h"

#include "command/report/ValueRecord.h"

namespace Command {

Happening indicationOf( Mrp::MrpLib const & lib, Happening::Kind kind,
                        Mrp::MrpParameters const & indication ) {
   Happening happening{ kind, Korv::now(), indication.intfId(), {} };
   happening.attributeType = indication.attributeType();
   happening.attributeEvent = indication.attributeEvent();
   happening.attributeKey = lib.mrpSm()->parseContext()->attributeKey();
   Mrp::withAttributeKind( lib.application(), indication.attributeType(), [&]( auto kindOf ) {
      happening.bytes = bytesOf( ( lib.*decltype( kindOf )::rx )() );
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
