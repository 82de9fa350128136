// A script from its text: the head, then what is read against it.
#include "command/CommandError.h"
#include "command/script/Script.h"
#include "command/script/ScriptConfig.h"
#include "command/script/ScriptSteps.h"
#include "command/script/ScriptValues.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Command {

namespace {

Mrp::MrpApplication readApplication( ScriptNode const & node ) {
   std::string const name = node.text();
   for ( auto const application : { Mrp::MSRP, Mrp::MVRP, Mrp::MMRP } ) {
      if ( name == Mrp::stringValue( application ) ) {
         return application;
      }
   }
   node.failNeeds( "MSRP, MVRP or MMRP" );
}

bool isControl( char c ) { return static_cast< unsigned char >( c ) < ' ' || c == '\x7f'; }

std::vector< Script::Interface > readInterfaces( ScriptNode const & node ) {
   std::vector< Script::Interface > interfaces;
   auto const members = node.members();
   if ( members.size() > ScriptLimits::interfaces ) {
      node.fail( std::to_string( members.size() ) + " of them, where " +
                 std::to_string( ScriptLimits::interfaces ) + " is the limit" );
   }
   for ( auto const & [name, value] : members ) {
      if ( name.empty() || std::ranges::any_of( name, isControl ) ) {
         value.fail( "an interface's name is text, without control characters" );
      }
      value.checkKeys( { "mac", "mtu" } );
      Script::Interface interface {
         name, {}, {}
      };
      if ( auto const mac = value.at( "mac" ); !mac.isNull() ) {
         interface.addr = mac.address();
      }
      if ( auto const mtu = value.at( "mtu" ); !mtu.isNull() ) {
         interface.mtu = mtu.whole< Korv::U32 >();
      }
      interfaces.push_back( std::move( interface ) );
   }
   return interfaces;
}

std::set< std::string > namesOf( std::vector< Script::Interface > const & interfaces ) {
   std::set< std::string > names;
   for ( auto const & interface : interfaces ) {
      names.insert( interface.name );
   }
   return names;
}

Script::AttributeName readRefusal( ScriptContext & context, ScriptNode const & node ) {
   auto const parts = node.elements();
   if ( parts.size() != 3 ) {
      node.fail( "an interface, a type and a key are needed" );
   }
   return { context.interface( parts[0] ), context.attributeType( parts[1] ),
            parts[2].whole< Korv::U64 >() };
}

Script::Preloaded readPreloaded( ScriptContext & context, ScriptNode const & node ) {
   node.checkKeys( { "intf", "type", "key", "applicant", "registrar", "value" } );
   Korv::U8 const type = context.attributeType( node.at( "type" ) );
   auto const value = node.find( "value" );
   return { { context.interface( node.at( "intf" ) ), type, node.at( "key" ).whole< Korv::U64 >() },
            node.at( "applicant" ).enumerator< Mrp::MrpApplicantState >(),
            node.at( "registrar" ).enumerator< Mrp::MrpRegistrarState >(),
            value ? readStoredValue( *value, context.application(), type )
                  : std::vector< Korv::U8 >() };
}

// A list that may be missing.
template < class F >
void forEachIn( ScriptNode const & script, std::string_view key, F && f ) {
   if ( auto const list = script.find( key ) ) {
      for ( ScriptNode const & element : list->elements() ) {
         f( element );
      }
   }
}

std::vector< Script::Step > readSteps( ScriptContext & context, ScriptNode const & list,
                                       Korv::Seconds until ) {
   std::vector< Script::Step > steps;
   for ( ScriptNode const & node : list.elements() ) {
      ScriptNode const time = node.at( "at" );
      Korv::Seconds const at = time.number( 0, ScriptLimits::time );
      auto run = readOperation( context, node );
      if ( at > until ) {
         context.warn( time, "the script ends before that" );
      } else {
         steps.push_back( { at, std::move( run ) } );
      }
   }
   std::ranges::stable_sort( steps, {}, &Script::Step::at );
   return steps;
}

std::string contentsOf( std::string const & path ) {
   std::unique_ptr< std::FILE, int ( * )( std::FILE * ) > const file(
      std::fopen( path.c_str(), "rb" ), std::fclose );
   if ( !file ) {
      throw CommandError( std::strerror( errno ) );
   }
   std::string contents;
   std::array< char, 65'536 > part{};
   std::size_t read = 0;
   do {
      read = std::fread( part.data(), 1, part.size(), file.get() );
      contents.append( part.data(), read );
   } while ( read > 0 && contents.size() <= ScriptLimits::fileBytes );
   if ( std::ferror( file.get() ) != 0 ) {
      throw CommandError( std::strerror( errno ) );
   }
   if ( contents.size() > ScriptLimits::fileBytes ) {
      throw CommandError( "larger than " + std::to_string( ScriptLimits::fileBytes >> 20 ) +
                          " MiB, which is the limit for scripts" );
   }
   return contents;
}

} // namespace

Script readScript( std::string_view text ) {
   ScriptNode const node = ScriptNode::parse( text );
   node.checkKeys( { "name", "about", "application", "mac", "etype", "bridgeMac", "interfaces",
                     "config", "standby", "joinRefusals", "preload", "steps", "until" } );
   for ( char const * const forPeople : { "name", "about" } ) {
      if ( auto const words = node.find( forPeople ) ) {
         words->text();
      }
   }
   Script script;
   script.application = readApplication( node.at( "application" ) );
   script.address = node.at( "mac" ).address();
   script.ethertype = node.at( "etype" ).whole< Korv::U16 >();
   script.bridgeAddress = node.at( "bridgeMac" ).address();
   script.interfaces = readInterfaces( node.at( "interfaces" ) );
   ScriptContext context( script.application, namesOf( script.interfaces ) );
   if ( auto const config = node.find( "config" ) ) {
      script.config = readConfig( context, *config );
   }
   if ( auto const standby = node.find( "standby" ) ) {
      script.standby = standby->truth();
   }
   forEachIn( node, "joinRefusals", [&]( ScriptNode const & element ) {
      script.joinRefusals.push_back( readRefusal( context, element ) );
   } );
   forEachIn( node, "preload", [&]( ScriptNode const & element ) {
      script.preload.push_back( readPreloaded( context, element ) );
   } );
   script.until = node.at( "until" ).number( 0, ScriptLimits::time );
   script.steps = readSteps( context, node.at( "steps" ), script.until );
   script.warnings = context.warnings();
   return script;
}

Script readScriptFile( std::string const & path ) {
   try {
      Script script = readScript( contentsOf( path ) );
      for ( std::string & warning : script.warnings ) {
         warning = path + ": " + warning;
      }
      return script;
   } catch ( CommandError const & error ) {
      throw CommandError( path + ": " + error.what() );
   }
}

} // namespace Command
