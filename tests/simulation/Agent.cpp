#include "tests/simulation/Agent.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/observability/Trace.h"

#include <algorithm>

namespace Simulation {

Agent::Agent( Mrp::MrpApplication application, Setting const & setting,
              Memory::VirtualActivity & activity )
   : Participant( application, setting.interfaces,
                  { .enabled = false,
                    .standby = setting.standby,
                    .randomLeaveAll = true,
                    .mtu = setting.mtu,
                    .activity = &activity } ),
     setting_( setting ) {
   for ( std::string const & name : setting.interfaces ) {
      ports_.push_back( { this, Pelk::IntfId( name ) } );
   }
   host().onTransmit( [this]( Pelk::IntfId const & intfId, Memory::FrameBytes frame ) {
      handleFrame( intfId, { frame.begin(), frame.end() } );
   } );
   lib().refuse = [this]( Indication const & i ) { return refuses( { i.type, i.key } ); };
   lib().react = [this]( Indication const & i ) { handleIndication( i ); };
}

void Agent::handleFrame( Pelk::IntfId intfId, Bytes const & frame ) {
   Decoded const read = decode( frame );
   Mrp::trace( 8, intfId, " sends ", read.text() );
   // Agents that answer each other without end would stop the clock.
   if ( ++frames_ > 500'000 ) {
      throw Violation( intfId.stringValue() + " sends without end" );
   }
   bool const isSound = read.faults.empty() && read.typesAscend && frame.size() <= 1514;
   bool const mayBeCut = protocol() == Protocol::mvrp && phase_ == Phase::disturbed;
   if ( !isSound && !mayBeCut && fault_.empty() ) {
      fault_ = intfId.stringValue() + " sends " + read.text() + " [" + hex( frame ) + ']';
   }
}

void Agent::handleIndication( Indication const & indication ) {
   lib().indications.clear();
   Mrp::trace( 8, indication.text( protocol() ) );
   Kind const kind( indication.type, indication.key );
   Port & port = *std::ranges::find( ports_, Pelk::IntfId( indication.interface ), &Port::intfId );
   std::size_t const before = port.told.size();
   if ( indication.join && !refuses( kind ) ) {
      port.told[kind] = indication.value; // again and again: a domain's, a New, another value's
   } else {
      port.told.erase( kind );
   }
   if ( port.told.size() != before && phase_ == Phase::settled ) {
      fault_ = "a change when all should have settled: " + indication.text( protocol() );
   }
   propagate( kind );
}

void Agent::propagate( Kind const & kind ) {
   for ( std::size_t i = 0; bridges() && i < 2; ++i ) {
      Port & here = ports_[i];
      Port & there = ports_[1 - i];
      auto const own = here.declared.find( kind );
      bool const isOwn = own != here.declared.end();
      auto const told = there.told.find( kind );
      if ( told == there.told.end() && isOwn ) {
         send( here, kind, Bytes( own->second ), Lv );
      } else if ( told != there.told.end() && !mayRefuse( kind ) &&
                  ( !isOwn || own->second != told->second ) ) {
         send( here, kind, Bytes( told->second ), JoinIn );
      }
   }
}

void Agent::send( Port & port, Kind const & kind, Bytes const & value, unsigned event, U32 times ) {
   U8 const type = kind.attributeType();
   WireKind const & words = wireKind( protocol(), type );
   Mrp::trace( 8, port.intfId, " is told to send ", event, " of ", words.name, ' ',
               words.text( kind.attributeKey() ) );
   lib().txValueIs( type, value );
   std::string const & name = port.intfId.stringValue();
   sendAttribute( name, type, event, { times, name } );
   if ( times == 0 ) {
      return;
   }
   if ( event == New || event == JoinIn || event == JoinMt ) {
      port.declared[kind] = value;
   } else if ( event == Lv || event == Mrp::lvInternal ) {
      port.declared.erase( kind );
   }
   if ( event == Mrp::lvInternal ) {
      port.told.erase( kind );
      propagate( kind );
   }
}

void Agent::sweep( Port & port, bool declarationsToo ) {
   port.swept = true;
   Book gone = std::exchange( port.told, {} );
   if ( declarationsToo ) {
      gone.merge( std::exchange( port.declared, {} ) );
   }
   for ( auto const & [kind, value] : gone ) {
      propagate( kind );
   }
}

void Agent::enabledIs( Port & port, bool enabled ) {
   port.enabled = enabled;
   if ( enabled ) {
      lib().mrpInterfaceEnable( port.intfId );
   } else {
      lib().mrpInterfaceDisable( port.intfId );
      sweep( port, true );
   }
}

void Agent::cleanUp( Port & port ) {
   lib().mrpCleanUpIntfDatabase( port.intfId );
   sweep( port, true );
}

// Removes what has been committed; an attribute that waits to be is out of its reach.
void Agent::cleanUpAttribute( Port & port, Kind const & kind ) {
   auto const [type, key] = std::pair( kind.attributeType(), kind.attributeKey() );
   auto const found = attribute( port.intfId.stringValue(), type, key );
   lib().mrpCleanUpIntfDatabaseAttribute( port.intfId, type, key );
   if ( found && found->committed ) {
      port.swept = true;
      port.declared.erase( kind );
      port.told.erase( kind );
      propagate( kind );
   }
}

// Frames that came in standby still wait. Each new arrival would read one of them, and the
// participant would be that many frames behind for ever; so its agent reads them first.
void Agent::wakeUp() {
   setting_.standby = false;
   endStandby();
   for ( Port const & port : ports_ ) {
      auto * const pam = host().pam( port.intfId );
      while ( pam && pam->hasDataOnSocket() ) {
         sm().mrpPamSm()->mrpIntfPamSm( port.intfId )->handleMrpdu();
      }
   }
}

void Agent::roleIs( Port & port, Role role ) {
   auto * const tree = host().stpStatus()->stpiStatusIs( "Rstp" )->mstiStatusIs( "Cist" );
   auto const * const record = tree->mstiPortStatus( port.intfId.stringValue() );
   if ( record && record->role() == role ) {
      return;
   }
   bool const flushes = port.enabled && !standby() && role == Role::alternate &&
                        ( port.roleSeen == Role::root || port.roleSeen == Role::designated );
   if ( port.enabled ) {
      port.roleSeen = role;
   }
   tree->mstiPortStatusIs( port.intfId.stringValue(), role );
   if ( flushes ) {
      sweep( port, false );
   }
}

void Agent::deviceIs( Port & port, bool present ) {
   port.hasDevice = present;
   if ( present ) {
      host().interfaceIs( port.intfId, {}, setting_.mtu );
   } else {
      host().interfaceDel( port.intfId );
   }
}

} // namespace Simulation
