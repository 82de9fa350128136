#include "mrp/platform/stp/Stp.h"

#include "mrp/platform/korv/Format.h"

namespace Stp {

namespace {

// A record that is missing is made complete and then told of; the record, or null if it was there.
template < class Child, class... A >
Child * make( Korv::Entity * parent, Children< Child > & children, Name const & name,
              A const &... values ) {
   if ( children.find( name ) ) {
      return nullptr;
   }
   Korv::Ptr< Child > const child = new Child( name, values... );
   children.put( parent, child );
   return child.ptr();
}

} // namespace

// Who hears of a change may take a whole level away: until the result is known the record stays.
MstiPortStatus * MstiStatus::mstiPortStatusIs( Name const & name, MstiPortStatus::Role role ) {
   Korv::Ptr< MstiStatus const > const self( this );
   if ( make( this, mstiPortStatus_, name, role ) ) {
      notify( &Reactor::onMstiPortStatus, name );
   } else {
      mstiPortStatus( name )->roleIs( role );
   }
   return mstiPortStatus( name );
}

void MstiStatus::mstiPortStatusDel( Name const & name ) {
   if ( auto const gone = mstiPortStatus_.take( name ) ) {
      notify( &Reactor::onMstiPortStatus, name );
   }
}

MstiStatus * StpiStatus::mstiStatusIs( Name const & name ) {
   Korv::Ptr< StpiStatus const > const self( this );
   if ( make( this, mstiStatus_, name ) ) {
      notify( &Reactor::onMstiStatus, name );
   }
   return mstiStatus( name );
}

void StpiStatus::mstiStatusDel( Name const & name ) {
   if ( auto const gone = mstiStatus_.take( name ) ) {
      notify( &Reactor::onMstiStatus, name );
   }
}

StpiStatus * Status::stpiStatusIs( Name const & name ) {
   if ( make( this, stpiStatus_, name ) ) {
      notify( &Reactor::onStpiStatus, name );
   }
   return stpiStatus( name );
}

void Status::stpiStatusDel( Name const & name ) {
   if ( auto const gone = stpiStatus_.take( name ) ) {
      notify( &Reactor::onStpiStatus, name );
   }
}

std::string pvstInstanceName( Bridging::VlanConfig const & vlanConfig ) {
   return Korv::format( "Vl%d", vlanConfig.vlanId().value() );
}

std::ostream & operator<<( std::ostream & out, MstiPortStatus::Role role ) {
   return out << Korv::stringValue( role );
}

} // namespace Stp
