#include "tests/support/RecordingLib.h"

#include "mrp/frame/AttributeKinds.h"
#include "mrp/frame/MrpSm.h"

#include <cstring>

namespace TestSupport {

std::string Indication::text( Protocol protocol ) const {
   WireKind const & kind = wireKind( protocol, type );
   std::string const what = std::string( kind.name ) + ' ' + kind.text( key );
   return ( join ? "join " + what + ' ' + name( static_cast< Event >( event ) )
                 : "leave " + what ) +
          " on " + interface;
}

// The records keep the wire's bytes: that they do is the vocabulary's test.
Bytes RecordingLib::rxValue( U8 attributeType ) const {
   Bytes value;
   Mrp::withAttributeKind( application(), attributeType, [&]( auto kind ) {
      auto const & record = ( this->*kind.rx )();
      auto const * const first = reinterpret_cast< U8 const * >( &record );
      value.assign( first, first + sizeof record );
   } );
   return value;
}

void RecordingLib::txValueIs( U8 attributeType, Bytes const & value ) {
   Mrp::withAttributeKind( application(), attributeType, [&]( auto kind ) {
      typename decltype( kind )::Value record;
      std::memcpy( static_cast< void * >( &record ), value.data(), sizeof record );
      ( this->*kind.txIs )( record );
   } );
}

bool RecordingLib::handled( bool join, Mrp::MrpParameters const & parameters ) {
   if ( !recording ) {
      return false;
   }
   Indication const told{ join,
                          Korv::now(),
                          parameters.intfId().stringValue(),
                          parameters.attributeType(),
                          parameters.attributeEvent(),
                          mrpSm()->parseContext()->attributeKey(),
                          rxValue( parameters.attributeType() ) };
   indications.push_back( told );
   bool const refused = join && refuse && refuse( told );
   if ( react ) {
      react( told );
   }
   return refused;
}

} // namespace TestSupport
