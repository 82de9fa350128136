#include "mrp/platform/stp/Stp.h"

#include "mrp/platform/korv/Format.h"

namespace Stp {

// Who hears of a change may take a whole level away: until the result is known the parent stays.

MstiPortStatus * MstiStatus::mstiPortStatusIs( Name const & name, MstiPortStatus::Role role ) {
   Korv::Ptr< MstiStatus const > const self( this );
   if ( auto * const port = mstiPortStatus( name ) ) {
      port->roleIs( role );
   } else {
      childIs( mstiPortStatus_, name, &Reactor::onMstiPortStatus, role );
   }
   return mstiPortStatus( name );
}

MstiStatus * StpiStatus::mstiStatusIs( Name const & name ) {
   Korv::Ptr< StpiStatus const > const self( this );
   return childIs( mstiStatus_, name, &Reactor::onMstiStatus );
}

StpiStatus * Status::stpiStatusIs( Name const & name ) {
   return childIs( stpiStatus_, name, &Reactor::onStpiStatus );
}

std::string pvstInstanceName( Bridging::VlanConfig const & vlanConfig ) {
   return Korv::format( "Vl%d", vlanConfig.vlanId().value() );
}

std::ostream & operator<<( std::ostream & out, MstiPortStatus::Role role ) {
   return out << Korv::stringValue( role );
}

} // namespace Stp
