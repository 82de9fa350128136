#include "mrp/platform/bridging/Bridging.h"

#include "mrp/platform/korv/RangeException.h"

namespace Bridging {

VlanId::VlanId( Korv::U16 value ) : value_( value ) {
   if ( value < first || value > last ) {
      Korv::throwRangeException( "VlanId::value < 1 or > 4094 not allowed" );
   }
}

VlanId VlanId::textRead( Korv::TextReader & in ) {
   auto const value = Korv::textReadField< Korv::U16 >( in, "value" );
   return value == 0 ? VlanId() : VlanId( value );
}

VlanConfig * Config::vlanConfig( VlanId vlanId ) const {
   return Korv::memberAt( vlanConfig_, vlanId );
}

VlanConfig * Config::vlanConfigIs( VlanId vlanId ) {
   return Korv::memberIs( vlanConfig_, vlanId, vlanId );
}

SwitchIntfConfig * Config::switchIntfConfig( Pelk::IntfId const & intfId ) const {
   return Korv::memberAt( switchIntfConfig_, intfId );
}

SwitchIntfConfig * Config::switchIntfConfigIs( Pelk::IntfId const & intfId ) {
   return Korv::memberIs( switchIntfConfig_, intfId, intfId );
}

} // namespace Bridging
