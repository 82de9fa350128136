#include "command/script/ScriptRun.h"

#include "command/CommandError.h"
#include "command/replay/Progress.h"

#include <algorithm>

namespace Command {

namespace {

void preload( Script::Preloaded const & given, Mrp::MrpApplicationDatabase & database ) {
   Mrp::MrpAttrDatabase & attribute =
      *database.attrDatabaseIs( Pelk::IntfId( given.name.interface ) )
          ->intfTypeApplicantIs( given.name.attributeType )
          ->mrpAttributeIs( given.name.key );
   attribute.applicantStateIs( given.applicantState );
   attribute.registrarStateIs( given.registrarState );
   attribute.attributeValueDelAll();
   for ( Korv::U8 const byte : given.value ) {
      attribute.attributeValueEnq( byte );
   }
}

// Time in strides, so that a run which has too much to tell ends before it fills the memory.
class Advance {
 public:
   Advance( Participant & participant, Korv::Seconds end )
      : participant_( participant ), end_( end ) {}

   void to( Korv::Seconds time ) {
      constexpr Korv::Seconds stride = 1;
      while ( now_ < time ) {
         now_ = std::min( time, now_ + stride );
         participant_.advanceTo( now_ );
         progress_.doneIs( now_ / end_ );
         checkSize();
      }
   }

   void checkSize() const {
      if ( participant_.timeline().size() > ScriptLimits::happenings ) {
         throw CommandError( "by " + std::to_string( now_ ) + " s there have been more than " +
                             std::to_string( ScriptLimits::happenings ) +
                             " frames and indications, which is the limit" );
      }
   }

 private:
   Participant & participant_;
   Korv::Seconds end_;
   Korv::Seconds now_ = 0;
   Progress progress_;
};

} // namespace

ParticipantSettings settingsOf( Script const & script ) {
   ParticipantSettings settings;
   settings.application = script.application;
   settings.address = script.address;
   settings.ethertype = script.ethertype;
   settings.bridgeAddress = script.bridgeAddress;
   settings.standby = script.standby;
   for ( auto const & interface : script.interfaces ) {
      settings.interfaces.push_back(
         { Pelk::IntfId( interface.name ), interface.addr, interface.mtu } );
   }
   settings.prepare = [config = script.config, preloaded = script.preload,
                       application = script.application]( Mrp::MrpConfig & mrpConfig,
                                                          Mrp::MrpStatus & mrpStatus ) {
      for ( Script::Setting const & set : config ) {
         set( mrpConfig );
      }
      for ( Script::Preloaded const & given : preloaded ) {
         preload( given, *mrpStatus.applicationIs( application ) );
      }
   };
   return settings;
}

void runScript( Script const & script, Participant & participant ) {
   for ( auto const & [interface, attributeType, key] : script.joinRefusals ) {
      participant.lib().refuse(
         Mrp::MrpAttribute( Pelk::IntfId( interface ), attributeType, key ) );
   }
   Advance advance( participant, script.until );
   participant.advanceTo( 0 );
   for ( Script::Step const & step : script.steps ) {
      advance.to( step.at );
      step.run( participant );
      advance.checkSize();
   }
   advance.to( script.until );
}

} // namespace Command
