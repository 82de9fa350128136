#include "command/replay/Participant.h"

namespace Command {

Participant::Participant( ParticipantSettings settings )
   : settings_( std::move( settings ) ), config_( Mrp::mrpConfigFactory( "mrpConfig" ) ),
     status_( Mrp::mrpStatusFactory( "mrpStatus" ) ), lib_( new RecordingLib( timeline_ ) ) {
   host_.brConfig()->bridgeMacAddrIs( settings_.bridgeAddress );
   for ( auto const & interface : settings_.interfaces ) {
      host_.interfaceIs( interface.intfId, interface.addr, interface.mtu );
   }
   host_.onTransmit( [this]( Pelk::IntfId const & intfId, Memory::FrameBytes frame ) {
      timeline_.push_back(
         { Happening::Kind::said, Korv::now(), intfId, { frame.begin(), frame.end() } } );
   } );
   lib_->applicationIs( settings_.application );
   lib_->applicationMacAddrIs( settings_.address );
   lib_->applicationEtypeIs( settings_.ethertype );
   if ( settings_.prepare ) {
      settings_.prepare( *config_, *status_ );
   }
   sm_ = Mrp::mrpSmFactory( host_.brConfig(), lib_.ptr(), config_, status_, host_.stpStatus(),
                            host_.brTopoConfig(), host_.ethPhyIntfStatusDir(), host_.em(),
                            settings_.standby );
}

Participant::~Participant() { host_.onTransmit( {} ); }

void Participant::deliver( Pelk::IntfId intfId, Memory::FrameBytes frame,
                           bool ( Memory::Pam::*intake )( Memory::FrameBytes ) ) {
   Memory::Pam * const pam = host_.pam( intfId );
   if ( !pam ) {
      return;
   }
   // Written down first, so that what it causes stands behind it.
   timeline_.push_back(
      { Happening::Kind::heard, Korv::now(), intfId, { frame.begin(), frame.end() } } );
   if ( !( pam->*intake )( frame ) ) {
      timeline_.pop_back();
   }
}

Korv::U64 Participant::heldBack( Pelk::IntfId intfId ) const {
   Memory::Pam const * const pam = host_.pam( intfId );
   return pam ? pam->heldBack() : 0;
}

} // namespace Command
