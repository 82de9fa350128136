#include "command/run/RunSettings.h"

#include "mrp/platform/korv/Format.h"

#include "command/CommandError.h"
#include "command/report/WellKnown.h"
#include "command/report/Words.h"

#include <algorithm>
#include <map>

namespace Command {

namespace {

using Timers = Mrp::MrpTimerConstants;

template < class T >
T const & needed( std::optional< T > const & option, char const * whatIsMissing ) {
   if ( !option ) {
      throw CommandError( whatIsMissing );
   }
   return *option;
}

template < class T >
void onlyFor( Mrp::MrpApplication application, RunOptions const & options,
              std::optional< T > const & option, char const * name ) {
   if ( option && options.application != application ) {
      throw CommandError( std::string( name ) + " is for " +
                          ( application == Mrp::MVRP ? "mvrp" : "msrp" ) );
   }
}

// Classes A and B as IEEE 802.1Q has them (table 35-7 and 35.2.2.9), unless told otherwise.
std::vector< Mrp::MsrpDomainAttribute > domainsOf( RunOptions const & options ) {
   std::map< U8, Mrp::MsrpDomainAttribute > domains;
   for ( DomainOption const & domain : options.domains.value_or( std::vector< DomainOption >() ) ) {
      Mrp::MsrpDomainAttribute const told( *domain.srClassId, *domain.priority, *domain.vlan );
      if ( !domains.emplace( *domain.srClassId, told ).second ) {
         throw CommandError( "two domains of class " + srClassWord( *domain.srClassId ) );
      }
   }
   domains.try_emplace( 5, 5, 2, 2 );
   domains.try_emplace( 6, 6, 3, 2 );
   std::vector< Mrp::MsrpDomainAttribute > all;
   for ( auto const & [srClassId, domain] : domains ) {
      all.push_back( domain );
   }
   return all;
}

Mrp::MsrpTalkerAdvertiseAttribute
talkerOf( TalkerOption const & talker, std::vector< Mrp::MsrpDomainAttribute > const & domains ) {
   auto const domain = std::ranges::find( domains, talker.srClassId,
                                          []( auto const & each ) { return each.srClassId(); } );
   if ( domain == domains.end() ) {
      std::string const name = srClassWord( talker.srClassId );
      throw CommandError( "a talker is of class " + name +
                          ", of which nothing is known: --domain class=" + name +
                          ",priority=...,vlan=..." );
   }
   return { *talker.streamId,
            { *talker.destination, talker.vlan.value_or( domain->srClassVID() ) },
            { *talker.frameSize, talker.intervalFrames },
            { domain->srClassPriority(), talker.rank },
            talker.latency };
}

StreamPlan streamsOf( RunOptions const & options ) {
   StreamPlan plan;
   plan.domains = domainsOf( options );
   plan.listeners = options.listeners.value_or( std::set< U64 >() );
   for ( TalkerOption const & talker : options.talkers.value_or( std::vector< TalkerOption >() ) ) {
      plan.talkers.push_back( talkerOf( talker, plan.domains ) );
   }
   auto const streamId = []( auto const & talker ) { return talker.streamId(); };
   std::ranges::sort( plan.talkers, {}, streamId );
   auto const twice = std::ranges::adjacent_find( plan.talkers, {}, streamId );
   if ( twice != plan.talkers.end() ) {
      throw CommandError( "two talkers of the stream " + streamIdWord( twice->streamId() ) );
   }
   return plan;
}

std::vector< Pelk::IntfId > interfacesOf( RunOptions const & options ) {
   std::vector< Pelk::IntfId > interfaces;
   for ( std::string const & name :
         needed( options.interfaces, "no interface is given to take part on" ) ) {
      Pelk::IntfId const intfId( name );
      if ( std::ranges::find( interfaces, intfId ) != interfaces.end() ) {
         throw CommandError( "the interface '" + name + "' is given twice" );
      }
      interfaces.push_back( intfId );
   }
   return interfaces;
}

} // namespace

RunSettings runSettings( RunOptions const & options ) {
   Mrp::MrpApplication const application =
      needed( options.application, "no application is given: --application mvrp or msrp" );
   onlyFor( Mrp::MVRP, options, options.declare, "declare" );
   onlyFor( Mrp::MVRP, options, options.bridge, "bridge" );
   onlyFor( Mrp::MSRP, options, options.talkers, "talker" );
   onlyFor( Mrp::MSRP, options, options.listeners, "listener" );
   onlyFor( Mrp::MSRP, options, options.domains, "domain" );
   RunSettings settings{ application,
                         options.address.value_or( wellKnownAddress( application ) ),
                         options.ethertype.value_or( wellKnownEthertype( application ) ),
                         options.declare.value_or( std::set< U16 >() ),
                         options.bridge.value_or( false ),
                         streamsOf( options ),
                         options.leaveTime.value_or( Timers::defaultLeaveTime ),
                         options.leaveAllTime.value_or( Timers::defaultLeaveAllTime ),
                         options.json.value_or( false ),
                         interfacesOf( options ),
                         options.log.value_or( LogTarget::errors ),
                         options.trace.value_or( "" ),
                         options.ring.value_or( "" ),
                         options.socket,
                         options.metrics };
   // Registrations that are asked for again before they can run out never do.
   if ( settings.leaveAllTime <= settings.leaveTime ) {
      throw CommandError(
         Korv::format( "a leave-all-time of %g s is no longer than the leave-time, "
                       "%g s: nothing would age out",
                       settings.leaveAllTime, settings.leaveTime ) );
   }
   return settings;
}

std::vector< std::string > warningsOf( RunSettings const & settings ) {
   std::vector< std::string > warnings;
   auto const check = [&]( char const * name, double time, double lowest, double highest ) {
      if ( time < lowest || time > highest ) {
         warnings.push_back( Korv::format( "a %s of %g s is not what others expect: %g to %g", name,
                                           time, lowest, highest ) );
      }
   };
   check( "leave-time", settings.leaveTime, Timers::minLeaveTime, Timers::maxLeaveTime );
   check( "leave-all-time", settings.leaveAllTime, Timers::minLeaveAllTime,
          Timers::maxLeaveAllTime );
   return warnings;
}

} // namespace Command
