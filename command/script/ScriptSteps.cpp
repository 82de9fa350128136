#include "command/script/ScriptSteps.h"

#include "mrp/frame/MrpPamSm.h"

#include "command/CommandError.h"
#include "command/replay/Participant.h"
#include "command/script/ScriptConfig.h"
#include "command/script/ScriptValues.h"

#include <map>

namespace Command {

namespace {

using Action = Script::Action;
using Role = Stp::MstiPortStatus::Role;

// Operations on an interface and nothing else.
template < void ( *act )( Participant &, Pelk::IntfId ) >
Action readIntf( ScriptContext & context, ScriptNode const & step ) {
   step.checkKeys( { "at", "op", "intf" } );
   return [interface = context.interface( step.at( "intf" ) )]( Participant & participant ) {
      act( participant, Pelk::IntfId( interface ) );
   };
}
void enable( Participant & participant, Pelk::IntfId intfId ) {
   participant.lib().mrpInterfaceEnable( intfId );
}
void disable( Participant & participant, Pelk::IntfId intfId ) {
   participant.lib().mrpInterfaceDisable( intfId );
}
void cleanUp( Participant & participant, Pelk::IntfId intfId ) {
   participant.lib().mrpCleanUpIntfDatabase( intfId );
}
void transmitAllLeaveAll( Participant & participant, Pelk::IntfId intfId ) {
   participant.sm().mrpPamSm()->transmitAllLeaveAll( intfId );
}

Action readRx( ScriptContext & context, ScriptNode const & step ) {
   step.checkKeys( { "at", "op", "intf", "frame" } );
   return [interface = context.interface( step.at( "intf" ) ),
           frame = step.at( "frame" ).bytes()]( Participant & participant ) {
      participant.deliverPastFilter( Pelk::IntfId( interface ), frame );
   };
}

Action readSend( ScriptContext & context, ScriptNode const & step ) {
   constexpr Korv::U8 highest = 255;
   step.checkKeys( { "at", "op", "intf", "type", "event", "value", "queue" } );
   std::string const interface = context.interface( step.at( "intf" ) );
   std::vector< std::string > queue;
   if ( auto const node = step.find( "queue" ) ) {
      for ( ScriptNode const & element : node->elements() ) {
         queue.push_back( context.interface( element ) );
      }
   } else {
      queue.push_back( interface );
   }
   auto const value = step.find( "value" );
   return [interface, queue, type = context.attributeType( step.at( "type" ) ),
           event = step.at( "event" ).nameOrNumber< Mrp::MrpThreePackedEvent >( highest ),
           load = value ? readTxFields( *value ) : []( Mrp::MrpLib & ) {},
           place = step.place()]( Participant & participant ) {
      if ( !participant.sm().parseContext() ) {
         throw CommandError( place + ": a participant in standby has nothing to send with" );
      }
      RecordingLib & lib = participant.lib();
      load( lib );
      for ( std::string const & name : queue ) {
         lib.mrpOutIntfQueueEnq( Pelk::IntfId( name ) );
      }
      lib.mrpSendAttribute( Mrp::MrpParameters( Pelk::IntfId( interface ), type, event ) );
   };
}

Action readConfigOperation( ScriptContext & context, ScriptNode const & step ) {
   step.checkKeys( { "at", "op", "attribute", "value", "intf" } );
   return [setting = readConfigStep( context, step )]( Participant & participant ) {
      setting( participant.config() );
   };
}

// A record that is there and is given its role anew tells of a change of the role alone.
void setRole( Stp::Status & status, std::string const & stpi, std::string const & msti,
              std::string const & port, Role role ) {
   status.stpiStatusIs( stpi )->mstiStatusIs( msti )->mstiPortStatusIs( port, role );
}
void deleteRole( Stp::Status & status, std::string const & stpi, std::string const & msti,
                 std::string const & port ) {
   Stp::StpiStatus * const instance = status.stpiStatus( stpi );
   if ( Stp::MstiStatus * const tree = instance ? instance->mstiStatus( msti ) : nullptr ) {
      tree->mstiPortStatusDel( port );
   }
}

Action readRole( ScriptContext & context, ScriptNode const & step ) {
   constexpr Korv::U32 highest = std::numeric_limits< Korv::U32 >::max();
   step.checkKeys( { "at", "op", "port", "msti", "stpi", "role" } );
   std::string const port = context.interface( step.at( "port" ) );
   std::string const msti = step.at( "msti" ).text();
   std::string const stpi = step.at( "stpi" ).text();
   ScriptNode const role = step.at( "role" );
   if ( role.isNull() ) {
      return [=]( Participant & participant ) {
         deleteRole( *participant.host().stpStatus(), stpi, msti, port );
      };
   }
   return [=, number = role.nameOrNumber< Role >( highest )]( Participant & participant ) {
      setRole( *participant.host().stpStatus(), stpi, msti, port, static_cast< Role >( number ) );
   };
}

using NativeVlans = std::map< std::string, Korv::U16 >;

// These are the native VLANs, and no others.
void setNativeVlans( Bridging::Config & config, NativeVlans const & vlans ) {
   for ( auto intf = config.switchIntfConfig().walk(); intf; ++intf ) {
      intf.value()->nativeVlanIs( 0 );
   }
   for ( auto const & [interface, vlan] : vlans ) {
      config.switchIntfConfigIs( Pelk::IntfId( interface ) )->nativeVlanIs( vlan );
   }
}

// These are the VLANs that have a configuration.
void setVlans( Bridging::Config & config, std::vector< bool > const & isConfigured ) {
   using Bridging::VlanId;
   for ( Korv::U16 number = VlanId::first; number <= VlanId::last; ++number ) {
      VlanId const vlanId( number );
      if ( isConfigured[number] ) {
         config.vlanConfigIs( vlanId );
      } else {
         config.vlanConfigDel( vlanId );
      }
   }
}

Action readStpMode( ScriptContext & context, ScriptNode const & step ) {
   using Bridging::VlanId;
   step.checkKeys( { "at", "op", "mode", "native", "vlans" } );
   NativeVlans native;
   if ( auto const node = step.find( "native" ) ) {
      for ( auto const & [interface, vlan] : node->members() ) {
         context.mention( vlan, interface );
         native[interface] = vlan.whole< Korv::U16 >();
      }
   }
   auto const vlans = step.find( "vlans" );
   bool const areAll = !vlans || vlans->isNull();
   std::vector< bool > isConfigured( VlanId::last + 1u, areAll );
   if ( !areAll ) {
      for ( ScriptNode const & vlan : vlans->elements() ) {
         isConfigured[vlan.whole< Korv::U16 >( VlanId::first, VlanId::last )] = true;
      }
   }
   return [native, isConfigured,
           mode = step.at( "mode" ).whole< Korv::S32 >()]( Participant & participant ) {
      Memory::Host & host = participant.host();
      setNativeVlans( *host.brConfig(), native );
      setVlans( *host.brConfig(), isConfigured );
      host.stpStatus()->stpModeIs( mode );
   };
}

Action readEndStandby( ScriptContext &, ScriptNode const & step ) {
   step.checkKeys( { "at", "op" } );
   return []( Participant & participant ) {
      participant.sm().standbyModeIs( false );
      participant.sm().handleStandbyMode();
   };
}

struct Operation {
   char const * name;
   Action ( *read )( ScriptContext & context, ScriptNode const & step );
};
constexpr Operation operations[] = {
   { "enable", readIntf< enable > },
   { "disable", readIntf< disable > },
   { "cleanUp", readIntf< cleanUp > },
   { "transmitAllLeaveAll", readIntf< transmitAllLeaveAll > },
   { "rx", readRx },
   { "send", readSend },
   { "config", readConfigOperation },
   { "role", readRole },
   { "stpMode", readStpMode },
   { "endStandby", readEndStandby },
};

} // namespace

Script::Action readOperation( ScriptContext & context, ScriptNode const & step ) {
   ScriptNode const op = step.at( "op" );
   std::string const name = op.text();
   std::string names;
   for ( Operation const & operation : operations ) {
      if ( name == operation.name ) {
         return operation.read( context, step );
      }
      names += ( names.empty() ? "" : ", " ) + std::string( operation.name );
   }
   op.fail( "there is no operation '" + name + "', but " + names );
}

} // namespace Command
