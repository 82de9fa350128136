#include "tests/simulation/Agent.h"

#include "mrp/frame/MrpPamSm.h"

#include <algorithm>

namespace Simulation {

std::ostream & operator<<( std::ostream & out, Name const & name ) {
   return out << Agent::interface( name.port ) << " type " << unsigned( name.kind.type )
              << " key 0x" << std::hex << name.kind.key << std::dec;
}

Agent::Agent( Setting const & setting, Memory::VirtualActivity & activity, std::ostream * words )
   : setting_( setting ), words_( words ), ports_( setting.ports ) {
   Participant::Options options;
   options.enabled = false;
   options.standby = setting.standby;
   options.randomLeaveAll = true;
   options.mtu = setting.mtu;
   options.activity = &activity;
   std::vector< std::string > interfaces;
   for ( U32 port = 0; port < ports(); ++port ) {
      interfaces.push_back( interface( port ) );
   }
   participant_ = std::make_unique< Participant >( setting.application, interfaces, options );
   participant_->host().onTransmit(
      [this]( Pelk::IntfId const & intfId, Memory::FrameBytes frame ) {
         handleFrame( intfId.stringValue(), { frame.begin(), frame.end() } );
      } );
   RecordingLib & lib = participant_->lib();
   lib.refuse = [this]( Indication const & i ) { return refuses( { i.type, i.key } ); };
   lib.react = [this]( Indication const & i ) { handleIndication( i ); };
}

void Agent::note( std::string const & text ) const {
   if ( words_ ) {
      *words_ << Korv::now() << " agent " << number() << ' ' << text << '\n';
   }
}

void Agent::handleFrame( std::string const & interface, Bytes const & frame ) {
   if ( words_ ) {
      note( interface + ": " + says( frame ) + " [" + hex( frame ) + ']' );
   }
   // Agents that answer each other without end would stop the clock.
   if ( ++frames_ > 500'000 ) {
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
   Name const name{ portOf( Pelk::IntfId( indication.interface ) ), kind };
   if ( indication.join && !refuses( kind ) ) {
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
   for ( U32 port = 0; bridges() && port < 2; ++port ) {
      Name const name{ port, kind };
      auto const there = told_.find( { 1 - port, kind } );
      auto const here = declared_.find( name );
      Bytes const value = there != told_.end() ? there->second : Bytes();
      if ( there == told_.end() && here != declared_.end() ) {
         send( name, Bytes( here->second ), Lv );
      } else if ( there != told_.end() && !mayRefuse( kind ) &&
                  ( here == declared_.end() || here->second != value ) ) {
         send( name, value, JoinIn );
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
   std::string const on = interface( name.port );
   note( "sends " + std::to_string( event ) + " of type " + std::to_string( name.kind.type ) +
         " key " + std::to_string( name.kind.key ) + " to " + on );
   participant_->lib().txValueIs( name.kind.type, value );
   participant_->sendAttribute( on, name.kind.type, event, { times, on } );
   if ( times == 0 ) {
      return;
   }
   if ( event == New || event == JoinIn || event == JoinMt ) {
      declared_[name] = value;
   } else if ( event == Lv || event == Mrp::lvInternal ) {
      declared_.erase( name );
   }
   if ( event == Mrp::lvInternal ) {
      told_.erase( name );
      propagate( name.kind );
   }
}

void Agent::sweep( Book & book, U32 port ) {
   ports_[port].swept = true;
   std::erase_if( book, [&]( auto const & entry ) { return entry.first.port == port; } );
}

void Agent::sweepAll( U32 port ) {
   sweep( declared_, port );
   sweep( told_, port );
   propagateAll();
}

void Agent::enabledIs( U32 port, bool enabled ) {
   note( ( enabled ? "enables " : "disables " ) + interface( port ) );
   ports_[port].enabled = enabled;
   if ( enabled ) {
      participant_->lib().mrpInterfaceEnable( intfId( port ) );
   } else {
      participant_->lib().mrpInterfaceDisable( intfId( port ) );
      sweepAll( port );
   }
}

void Agent::cleanUp( U32 port ) {
   note( "cleans up " + interface( port ) );
   participant_->lib().mrpCleanUpIntfDatabase( intfId( port ) );
   sweepAll( port );
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
   if ( !standby() ) {
      return;
   }
   note( "ends standby" );
   setting_.standby = false;
   sm().standbyModeIs( false );
   sm().handleStandbyMode();
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
   auto const * const record = tree->mstiPortStatus( interface( port ) );
   if ( record && record->role() == role ) {
      return;
   }
   note( interface( port ) + " has role " + Korv::stringValue( role ) );
   Role const seen = ports_[port].roleSeen;
   bool const flushes = enabled( port ) && !standby() && role == Role::alternate &&
                        ( seen == Role::root || seen == Role::designated );
   if ( enabled( port ) ) {
      ports_[port].roleSeen = role;
   }
   tree->mstiPortStatusIs( interface( port ), role );
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
