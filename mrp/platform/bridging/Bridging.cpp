#include "mrp/platform/bridging/Bridging.h"

#include "mrp/platform/korv/RangeException.h"

namespace Bridging {

VlanId::VlanId( Korv::U16 value ) : value_( value ) {
   if ( value < 1 || value > 4094 ) {
      Korv::throwRangeException( "VlanId::value < 1 or > 4094 not allowed" );
   }
}

VlanId VlanId::textRead( Korv::TextReader & in ) {
   auto const value = Korv::textReadField< Korv::U16 >( in, "value" );
   return value == 0 ? VlanId() : VlanId( value );
}

VlanConfig * Config::vlanConfig( VlanId vlanId ) const {
   auto const * const found = vlanConfig_.find( vlanId );
   return found ? found->ptr() : nullptr;
}

VlanConfig * Config::vlanConfigIs( VlanId vlanId ) {
   return vlanConfig_
      .findOrMake( vlanId, [&] { return Korv::Ptr< VlanConfig >( new VlanConfig( vlanId ) ); } )
      .ptr();
}

SwitchIntfConfig * Config::switchIntfConfig( Pelk::IntfId const & intfId ) const {
   auto const * const found = switchIntfConfig_.find( intfId );
   return found ? found->ptr() : nullptr;
}

SwitchIntfConfig * Config::switchIntfConfigIs( Pelk::IntfId const & intfId ) {
   return switchIntfConfig_
      .findOrMake( intfId,
                   [&] { return Korv::Ptr< SwitchIntfConfig >( new SwitchIntfConfig( intfId ) ); } )
      .ptr();
}

} // namespace Bridging
