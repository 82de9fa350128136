#include "command/run/ForwardingPorts.h"

#include <utility>

namespace Command {

// Whatever changes, in a record of whatever level, the same is to be done.
template < class Record >
class ForwardingPorts::Watch : public Record::Reactor {
 public:
   explicit Watch( ForwardingPorts & ports ) : ports_( ports ) {}

 protected:
   void handleChange() { ports_.handleChange(); }

 private:
   ForwardingPorts & ports_;
};

class ForwardingPorts::StatusWatch : public Watch< Stp::Status > {
   using Watch::Watch;
   void onStpiStatus( Korv::Name const & ) override { handleChange(); }
   void onStpMode() override { handleChange(); }
};

class ForwardingPorts::StpiWatch : public Watch< Stp::StpiStatus > {
   using Watch::Watch;
   void onMstiStatus( Korv::Name const & ) override { handleChange(); }
};

class ForwardingPorts::MstiWatch : public Watch< Stp::MstiStatus > {
   using Watch::Watch;
   void onMstiPortStatus( Korv::Name const & ) override { handleChange(); }
};

class ForwardingPorts::PortWatch : public Watch< Stp::MstiPortStatus > {
   using Watch::Watch;
   void onRole() override { handleChange(); }
};

ForwardingPorts::ForwardingPorts( Mrp::MrpLib const & lib, Korv::Ptr< Stp::Status const > stpStatus,
                                  std::function< void() > changed )
   : lib_( lib ), stpStatus_( std::move( stpStatus ) ), changed_( std::move( changed ) ) {
   refresh();
}

ForwardingPorts::~ForwardingPorts() = default;

void ForwardingPorts::handleChange() {
   isStale_ = true;
   changed_();
}

template < class Watch, class Record >
void ForwardingPorts::watch( Record const & record ) {
   auto reactor = std::make_unique< Watch >( *this );
   reactor->notifierIs( &record );
   watches_.push_back( std::move( reactor ) );
}

void ForwardingPorts::refresh() {
   if ( !std::exchange( isStale_, false ) || !stpStatus_ ) {
      return;
   }
   watches_.clear();
   watch< StatusWatch >( *stpStatus_ );
   for ( auto stpi = stpStatus_->stpiStatus().walk(); stpi; ++stpi ) {
      watch< StpiWatch >( *stpi.value() );
      for ( auto msti = stpi.value()->mstiStatus().walk(); msti; ++msti ) {
         watch< MstiWatch >( *msti.value() );
         for ( auto port = msti.value()->mstiPortStatus().walk(); port; ++port ) {
            watch< PortWatch >( *port.value() );
         }
      }
   }
}

bool ForwardingPorts::forwards( Pelk::IntfId intfId ) const {
   if ( !stpStatus_ ) {
      return true;
   }
   Korv::Name const topology( lib_.baseSpanningTreeTopo( intfId ) );
   Korv::Name const portName( intfId.stringValue() );
   for ( auto stpi = stpStatus_->stpiStatus().walk(); stpi; ++stpi ) {
      auto const * const msti = stpi.value()->mstiStatus( topology );
      auto const * const port = msti ? msti->mstiPortStatus( portName ) : nullptr;
      if ( port ) {
         using Role = Stp::MstiPortStatus::Role;
         Role const role = port->role();
         return role == Role::root || role == Role::designated || role == Role::master;
      }
   }
   return true;
}

} // namespace Command
