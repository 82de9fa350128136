#include "command/script/ScriptConfig.h"

namespace Command {

namespace {

using Mrp::MrpConfig;

template < class T >
T readAs( ScriptNode const & value ) {
   if constexpr ( std::is_same_v< T, bool > ) {
      return value.truth();
   } else {
      return value.number( -ScriptLimits::configuredTime, ScriptLimits::configuredTime );
   }
}

template < class T, class V >
Script::Setting scalarSetting( Korv::ScalarAttribute< MrpConfig, T, V > const & attribute,
                               ScriptNode const & value ) {
   return [mutator = attribute.mutator, v = readAs< V >( value )]( MrpConfig & config ) {
      ( config.*mutator )( v );
   };
}

template < class C, class V >
Script::Setting entrySetting( Korv::MapAttribute< MrpConfig, C, Pelk::IntfId, V > const & attribute,
                              std::string const & interface, ScriptNode const & value ) {
   if ( value.isNull() ) {
      return [remover = attribute.remover, interface]( MrpConfig & config ) {
         ( config.*remover )( Pelk::IntfId( interface ) );
      };
   }
   return [mutator = attribute.mutator, interface, v = readAs< V >( value )]( MrpConfig & config ) {
      ( config.*mutator )( Pelk::IntfId( interface ), v );
   };
}

// Calls f( attribute ) for the attribute of that name; the node is where the name stands.
template < class F >
void withAttribute( ScriptNode const & node, std::string const & name, F && f ) {
   bool isFound = false;
   std::string names;
   MrpConfig::attributes().forEach( [&]( auto const & attribute ) {
      names += ( names.empty() ? "" : ", " ) + std::string( attribute.name );
      if ( name == attribute.name ) {
         isFound = true;
         f( attribute );
      }
   } );
   if ( !isFound ) {
      node.fail( "there is no such attribute here, but " + names );
   }
}

} // namespace

std::vector< Script::Setting > readConfig( ScriptContext & context, ScriptNode const & config ) {
   std::vector< Script::Setting > settings;
   for ( auto const & member : config.members() ) {
      ScriptNode const & value = member.second;
      withAttribute( value, member.first, [&]( auto const & attribute ) {
         if constexpr ( Korv::kindOf< decltype( attribute ) > == Korv::AttributeKind::map ) {
            for ( auto const & [interface, time] : value.members() ) {
               context.mention( time, interface );
               settings.push_back( entrySetting( attribute, interface, time ) );
            }
         } else {
            settings.push_back( scalarSetting( attribute, value ) );
         }
      } );
   }
   return settings;
}

Script::Setting readConfigStep( ScriptContext & context, ScriptNode const & step ) {
   ScriptNode const name = step.at( "attribute" );
   ScriptNode const value = step.at( "value" );
   Script::Setting setting;
   withAttribute( name, name.text(), [&]( auto const & attribute ) {
      if constexpr ( Korv::kindOf< decltype( attribute ) > == Korv::AttributeKind::map ) {
         setting = entrySetting( attribute, context.interface( step.at( "intf" ) ), value );
      } else {
         if ( auto const interface = step.find( "intf" ) ) {
            interface->fail( std::string( attribute.name ) + " is the same for all interfaces" );
         }
         setting = scalarSetting( attribute, value );
      }
   } );
   return setting;
}

} // namespace Command
