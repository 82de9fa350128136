#include "command/RecordingLib.h"

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"

namespace Command {

bool RecordingLib::mrpJoinIndication( Mrp::MrpParameters const & indication ) {
   record( Happening::Kind::join, indication );
   return false;
}

void RecordingLib::mrpLeaveIndication( Mrp::MrpParameters const & indication ) {
   record( Happening::Kind::leave, indication );
}

void RecordingLib::record( Happening::Kind kind, Mrp::MrpParameters const & indication ) {
   Happening happening{ kind, Korv::now(), indication.intfId(), {} };
   happening.attributeType = indication.attributeType();
   happening.attributeEvent = indication.attributeEvent();
   happening.attributeKey = mrpSm()->parseContext()->attributeKey();
   Mrp::withAttributeKind( application(), indication.attributeType(), [&]( auto attributeKind ) {
      auto const & value = ( this->*decltype( attributeKind )::rx )();
      auto const * const bytes = reinterpret_cast< Korv::U8 const * >( &value );
      happening.bytes.assign( bytes, bytes + sizeof value );
   } );
   timeline_.push_back( std::move( happening ) );
}

} // namespace Command
