#include "tests/simulation/Agent.h"

#include "mrp/frame/MrpPamSm.h"

#include <algorithm>

namespace Simulation {

namespace {

std::vector< std::string > interfaces( U32 ports ) {
   std::vector< std::string > names;
   for ( U32 port = 0; port < ports; ++port ) {
      names.push_back( Agent::interface( port ) );
   }
   return names;
}

U32 portOf( std::string const & interface ) {
   return static_cast< U32 >( std::stoul( interface.substr( 8 ) ) ) - 1;
}

bool isForwarding( Role role ) { return role == Role::root || role == Role::designated; }

} // namespace

std::ostream & operator<<( std::ostream & out, Name const & name ) {
   return out << Agent::interface( name.port ) << " type " << unsigned( name.kind.type )
              << " key 0x" << std::hex << name.kind.key << std::dec;
}

Agent::Agent( Setting const & setting, Memory::VirtualActivity & activity, Trace & trace )
   : setting_( setting ), trace_( trace ), ports_( setting.ports ) {
   Participant::Options options;
   options.enabled = false;
   options.standby = setting.standby;
   options.randomLeaveAll = true;
   options.mtu = setting.mtu;
   options.activity = &activity;
   participant_ =
      std::make_unique< Participant >( setting.application, interfaces( setting.ports ), options );
   participant_->host().onTransmit(
      [this]( Pelk::IntfId const & intfId, Memory::FrameBytes frame ) {
         handleFrame( intfId.stringValue(), { frame.begin(), frame.end() } );
      } );
   RecordingLib & lib = participant_->lib();
   lib.refuse = [this]( Indication const & i ) { return refuses( { i.type, i.key } ); };
   lib.react = [this]( Indication const & i ) { handleIndication( i ); };
}

void Agent::handleFrame( std::string const & interface, Bytes const & frame ) {
   trace_.frame( Korv::now(), number(), interface, frame );
   // Agents that answer each other without end would stop the clock.
   static constexpr U32 storm = 50'000;
   framesAtOnce_ = latestFrame_ == Korv::now() ? framesAtOnce_ + 1 : 0;
   latestFrame_ = Korv::now();
   if ( framesAtOnce_ > storm ) {
      throw Violation( "agent " + std::to_string( number() ) + " sends without end" );
   }
   if ( !setting_.readsFrames || !frameFault_.empty() ) {
      return;
   }
   Decoded const read = decode( frame );
   bool const ascends = std::ranges::is_sorted( read.messages, {}, &DecodedMessage::type );
   if ( !read.faults.empty() || !ascends || frame.size() > 1514 ) {
      frameFault_ = read.text() + " [" + hex( frame ) + ']';
   }
}

void Agent::handleIndication( Indication const & indication ) {
   participant_->lib().indications.clear();
   note( indication.text( participant_->protocol() ) );
   Kind const kind{ indication.type, indication.key };
   Name const name{ portOf( indication.interface ), kind };
   bool const refused = indication.join && refuses( kind );
   if ( indication.join && !refused ) {
      changesTold_ += !told_.contains( name );
      told_[name] = indication.value;
      if ( kind.key == 0 ) {
         keyZero_.insert( name );
      }
   } else {
      changesTold_ += told_.erase( name );
   }
   propagate( kind );
}

void Agent::propagate( Kind const & kind ) {
   if ( !bridges() ) {
      return;
   }
   for ( U32 port = 0; port < ports(); ++port ) {
      Bytes const * value = nullptr;
      for ( U32 other = 0; other < ports(); ++other ) {
         auto const found = told_.find( { other, kind } );
         if ( other != port && found != told_.end() ) {
            value = &found->second;
         }
      }
      Name const name{ port, kind };
      auto const held = declared_.find( name );
      if ( value && !mayRefuse( kind ) && ( held == declared_.end() || held->second != *value ) ) {
         send( name, Bytes( *value ), JoinIn );
      } else if ( !value && held != declared_.end() ) {
         send( name, Bytes( held->second ), Lv );
      }
   }
}

void Agent::propagateAll() {
   std::set< Kind > kinds;
   for ( Book const * const book : { &told_, &declared_ } ) {
      for ( auto const & [name, value] : *book ) {
         kinds.insert( name.kind );
      }
   }
   for ( Kind const & kind : kinds ) {
      propagate( kind );
   }
}

void Agent::send( Name const & name, Bytes const & value, unsigned event, U32 times ) {
   note( "sends " + std::to_string( event ) + " of type " + std::to_string( name.kind.type ) +
         " key " + std::to_string( name.kind.key ) + " to " + interface( name.port ) );
   participant_->lib().txValueIs( name.kind.type, value );
   participant_->sendAttribute( interface( name.port ), name.kind.type, event,
                                { times, interface( name.port ) } );
   if ( times == 0 ) {
      return;
   }
   switch ( event ) {
   case New:
   case JoinIn:
   case JoinMt: declared_[name] = value; break;
   case Lv: declared_.erase( name ); break;
   case Mrp::lvInternal:
      declared_.erase( name );
      told_.erase( name );
      propagate( name.kind );
      break;
   default: break;
   }
}

void Agent::sweep( Book & book, U32 port ) {
   ports_[port].swept = true;
   std::erase_if( book, [&]( auto const & entry ) { return entry.first.port == port; } );
}

void Agent::enabledIs( U32 port, bool enabled ) {
   note( ( enabled ? "enables " : "disables " ) + interface( port ) );
   ports_[port].enabled = enabled;
   if ( enabled ) {
      participant_->lib().mrpInterfaceEnable( intfId( port ) );
   } else {
      participant_->lib().mrpInterfaceDisable( intfId( port ) );
      sweep( declared_, port );
      sweep( told_, port );
   }
   propagateAll();
}

void Agent::cleanUp( U32 port ) {
   note( "cleans up " + interface( port ) );
   participant_->lib().mrpCleanUpIntfDatabase( intfId( port ) );
   sweep( declared_, port );
   sweep( told_, port );
   propagateAll();
}

// Removes what has been committed; an attribute that waits to be is out of its reach.
void Agent::cleanUpAttribute( Name const & name ) {
   Kind const kind = name.kind;
   auto const found = participant_->attribute( interface( name.port ), kind.type, kind.key );
   note( "cleans up one attribute on " + interface( name.port ) );
   participant_->lib().mrpCleanUpIntfDatabaseAttribute( intfId( name.port ), kind.type, kind.key );
   if ( found && found->committed ) {
      ports_[name.port].swept = true;
      declared_.erase( name );
      told_.erase( name );
      propagate( kind );
   }
}

void Agent::transmitAllLeaveAll( U32 port ) {
   note( "transmits all LeaveAll on " + interface( port ) );
   sm().mrpPamSm()->transmitAllLeaveAll( intfId( port ) );
}

// Frames that came in standby still wait. Each new arrival would read one of them, and the
// participant would be that many frames behind for ever; so its agent reads them first.
void Agent::endStandby() {
   note( "ends standby" );
   setting_.standby = false;
   participant_->sm().standbyModeIs( false );
   participant_->sm().handleStandbyMode();
   for ( U32 port = 0; port < ports(); ++port ) {
      auto * const pam = participant_->host().pam( intfId( port ) );
      while ( pam && pam->hasDataOnSocket() ) {
         sm().mrpPamSm()->mrpIntfPamSm( intfId( port ) )->handleMrpdu();
      }
   }
}

void Agent::refusesIs( bool refuses ) {
   note( refuses ? "refuses joins" : "refuses nothing" );
   setting_.refuses = refuses;
}

void Agent::roleIs( U32 port, Role role ) {
   auto * const tree =
      participant_->host().stpStatus()->stpiStatusIs( "Rstp" )->mstiStatusIs( "Cist" );
   auto * const record = tree->mstiPortStatus( interface( port ) );
   if ( record && record->role() == role ) {
      return;
   }
   note( interface( port ) + " has role " + Korv::stringValue( role ) );
   Role const seen = ports_[port].roleSeen;
   bool const flushes =
      enabled( port ) && !standby() && isForwarding( seen ) && role == Role::alternate;
   // Those that were about to leave are told of; all others go silently.
   U64 toTell = changesTold_;
   for ( auto const & [name, value] : told_ ) {
      toTell +=
         flushes && name.port == port &&
         participant_->attribute( interface( port ), name.kind.type, name.kind.key )->registrar ==
            Mrp::mrpLv;
   }
   if ( enabled( port ) ) {
      ports_[port].roleSeen = role;
   }
   if ( record ) {
      record->roleIs( role );
   } else {
      tree->mstiPortStatusIs( interface( port ), role );
   }
   if ( changesTold_ != toTell ) {
      throw Violation( "agent " + std::to_string( number() ) + ": a role's leave indications" );
   }
   if ( flushes ) {
      sweep( told_, port );
      propagateAll();
   }
}

void Agent::deviceIs( U32 port, bool present ) {
   note( interface( port ) + ( present ? " is plugged in" : " is pulled out" ) );
   ports_[port].device = present;
   if ( present ) {
      participant_->host().interfaceIs( intfId( port ), {}, setting_.mtu );
   } else {
      participant_->host().interfaceDel( intfId( port ) );
   }
}

} // namespace Simulation
