#include "tests/simulation/Scene.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/observability/Trace.h"

#include <cstdlib>

namespace Simulation {

namespace {

constexpr Korv::Seconds settledLeaveAllTime = 6;
constexpr Korv::Seconds settledLeaveTime = 1.2;
constexpr Korv::Seconds slack = 0.5; // for ticks and wires

// Streams whose values change, and from where on those are that have one value.
constexpr U64 firstChanging = 0x1000;
constexpr U64 firstStream = 0x8000'0000'0000'0100;
bool changes( Kind const & kind ) {
   return kind.attributeKey() >= firstChanging && kind.attributeKey() < firstStream;
}

} // namespace

Scene::Scene( Mrp::MrpApplication application, U64 seed )
   : application_( application ), random_( seed ) {
   srand( static_cast< unsigned >( seed ) );
}

void Scene::run() {
   build();
   disturb();
   settle();
   verify();
}

void Scene::build() {
   buildKinds();
   // A pair, hosts on one segment, or a chain whose inner agents have two ports and may bridge.
   enum Shape { pair, shared, chain, bridges };
   Shape const shape = random_.oneOf( { pair, pair, pair, pair, shared, chain, chain, bridges } );
   valuesSettle_ = valuesSettle_ && shape != shared;
   U32 const count = shape == pair ? 2 : 3 + random_.below( 2 );
   for ( U32 number = 0; number < count; ++number ) {
      bool const inner = shape >= chain && number > 0 && number + 1 < count;
      Agent::Setting setting = buildSetting( number, inner ? 2 : 1 );
      setting.bridges = inner && shape == bridges;
      agents_.push_back( std::make_unique< Agent >( application_, setting, activity_ ) );
      for ( Port & port : agents_.back()->ports() ) {
         ports_.push_back( &port );
      }
   }
   for ( U32 i = 0; i < count; ++i ) {
      U32 const end = shape >= chain ? std::min( i + 2, count ) : count;
      for ( U32 j = i + 1; j < end; ++j ) {
         links_.push_back( std::make_unique< Link >( random_, faults_, agents_[i]->ports().back(),
                                                     agents_[j]->ports().front() ) );
      }
   }
   for ( Port * const port : ports_ ) {
      if ( random_.chance( 0.9 ) ) {
         port->agent->enabledIs( *port, true );
      }
   }
}

// Neighbours share vectors, and in a vector the FirstValue speaks for all: values that change stand
// apart from all others.
void Scene::buildKinds() {
   U32 const many = random_.chance( 0.1 ) ? 60 : 6;
   valuesSettle_ = many == 6;
   U32 const run = 1 + random_.below( many );
   U32 const apart = random_.below( many );
   bool const isMvrp = application_ == Mrp::MVRP;
   for ( U8 type = 1; type <= ( isMvrp ? vlanType : listenerType ); ++type ) {
      U64 const first = isMvrp ? 1 + random_.below( 4000 ) : firstStream;
      for ( U64 i = 0; i < run; ++i ) {
         kinds_.emplace_back( type, first + i );
      }
      for ( U64 i = 0; i < apart; ++i ) {
         kinds_.emplace_back( type, isMvrp ? 1 + random_.below( 4095 ) : firstChanging + 16 * i );
      }
   }
   if ( !isMvrp ) {
      kinds_.emplace_back( domainType, 5 );
      kinds_.emplace_back( domainType, 6 );
   }
}

Agent::Setting Scene::buildSetting( U32 number, U32 ports ) {
   using Mtu = std::optional< U32 >;
   Agent::Setting setting;
   for ( U32 i = 0; i < ports; ++i ) {
      setting.interfaces.push_back(
         { static_cast< char >( 'A' + number ), static_cast< char >( '1' + i ) } );
   }
   setting.standby = random_.chance( 0.15 );
   setting.mtu =
      random_.oneOf( { Mtu( 1500 ), Mtu( 1500 ), Mtu(), Mtu( 9000 ), Mtu( 300 ), Mtu( 1 ) } );
   valuesSettle_ = valuesSettle_ && setting.mtu.value_or( 1500 ) >= 1500;
   setting.refuses = random_.chance( 0.3 );
   for ( Kind const & kind : kinds_ ) {
      if ( setting.refuses && !changes( kind ) && random_.chance( 0.2 ) ) {
         setting.refused.insert( kind );
      }
   }
   return setting;
}

void Scene::operate() {
   Port & port = *random_.oneOf( ports_ );
   Agent & agent = *port.agent;
   bool const isAwake = !agent.standby();
   if ( random_.chance( 0.6 ) ) {
      if ( isAwake ) {
         sayAnything( port );
      }
      return;
   }
   U32 const operation = random_.below( isAwake ? 11 : 7 );
   Mrp::trace( 8, "operation ", operation, " on ", port.intfId );
   switch ( operation ) {
   case 0: agent.enabledIs( port, !port.enabled ); break;
   case 1: {
      U32 const which = random_.below( 7 );
      double const leave = random_.oneOf( { 0.05, 0.3, 0.6, 2.0, 5.0 } );
      double const leaveAll = random_.oneOf( { 0.2, 1.0, 3.0, 10.0, 60.0 } );
      agent.settingIs( which, port.intfId, leave, leaveAll, random_.chance( 0.4 ) );
      break;
   }
   case 2:
      // A wire knows a sender by its device: what it has sent lands before it comes back.
      plug( port, false );
      activity_.advanceBy( 2 );
      plug( port, random_.chance( 0.9 ) );
      break;
   case 3: random_.oneOf( links_ )->cutIs( random_.chance( 0.5 ) ); break;
   case 4: agent.refusesIs( !agent.refuses() ); break;
   case 5:
      agent.roleIs( port, random_.oneOf( { Role::unknown, Role::root, Role::designated,
                                           Role::alternate, Role::alternate } ) );
      break;
   case 6: agent.wakeUp(); break;
   case 7: sayMuch( port ); break;
   case 8: agent.cleanUp( port ); break;
   case 9: agent.cleanUpAttribute( port, anyKind() ); break;
   default: agent.sm().mrpPamSm()->transmitAllLeaveAll( port.intfId ); break;
   }
}

// A few of them meet again and again.
Kind const & Scene::anyKind() {
   std::size_t const few = std::min< std::size_t >( kinds_.size(), 3 );
   return kinds_[random_.below( random_.chance( 0.5 ) ? few : kinds_.size() )];
}

void Scene::say( Port & port, Kind const & kind, unsigned event, U32 times ) {
   Agent & agent = *port.agent;
   U64 const key = kind.attributeKey();
   U32 const variant = changes( kind ) ? random_.below( 3 ) : 0;
   if ( !agent.bridges() && !agent.mayRefuse( kind ) &&
        ( !changes( kind ) || ports_[key / 16 % ports_.size()] == &port ) ) {
      Bytes const value = storedValue( agent.protocol(), kind.attributeType(), key, variant );
      agent.send( port, kind, value, event, times );
   }
}

// Declares and withdraws, for the most part; the rest does not declare anything.
void Scene::sayAnything( Port & port ) {
   unsigned const event = random_.oneOf(
      { 0u, 1u, 1u, 1u, 1u, 3u, 3u, 5u, 5u, 5u, 6u, 7u, random_.oneOf( { 2u, 4u, 8u, 255u } ) } );
   U32 const times = random_.oneOf( { 0u, 1u, 1u, 1u, 1u, 1u, 1u, 1u, 2u } );
   say( port, anyKind(), event, times );
}

void Scene::sayMuch( Port & port ) {
   unsigned const event = random_.oneOf( { 1u, 1u, 5u } );
   U32 const step = 1 + random_.below( 2 );
   for ( auto i = random_.below( kinds_.size() ); i < kinds_.size(); i += step ) {
      say( port, kinds_[i], event );
   }
}

void Scene::plug( Port & port, bool in ) {
   if ( in == port.hasDevice ) {
      return;
   }
   Korv::Ptr< Memory::Device > const leaving = port.agent->host().device( port.intfId );
   port.agent->deviceIs( port, in );
   for ( auto const & link : links_ ) {
      if ( link->beyond( port ) && in ) {
         link->plug( port );
      } else if ( link->beyond( port ) ) {
         link->unplug( *leaving );
      }
   }
}

void Scene::disturb() {
   if ( random_.chance( 0.8 ) ) {
      faults_.loss = random_.oneOf( { 0.0, 0.05, 0.4 } );
      faults_.late = random_.oneOf( { 0.0, 0.1, 0.5 } );
      faults_.repeat = random_.oneOf( { 0.0, 0.1, 0.5 } );
      faults_.lateness = random_.oneOf( { 0.01, 0.3, 1.0 } );
   }
   double const end = random_.between( 3, 20 );
   double const pace = random_.oneOf( { 0.02, 0.2, 0.6 } );
   while ( activity_.clock()->now() < end ) {
      operate();
      checkAll();
      // Many operations share a time; others fall on a tick.
      if ( random_.chance( 0.7 ) ) {
         activity_.advanceBy( random_.chance( 0.2 ) ? 0.1 : random_.between( 0, pace ) );
         checkAll();
      }
   }
}

void Scene::settle() {
   leaveAllTime_ = settledLeaveAllTime;
   for ( auto const & link : links_ ) {
      link->cutIs( false );
   }
   for ( auto const & agent : agents_ ) {
      if ( random_.chance( 0.8 ) ) {
         agent->wakeUp();
      }
      Mrp::MrpConfig & config = agent->config();
      config.leaveTimeIs( random_.oneOf( { 0.6, 1.0, settledLeaveTime } ) );
      config.txLeaveAllExpiryTimeIs( random_.oneOf( { 0.6, 0.6, 0.8, settledLeaveTime } ) );
      config.leaveAllTimeIs( random_.between( 0.7, 1 ) * leaveAllTime_ );
      config.intfLeaveTimeDelAll();
      config.intfLeaveAllTimeDelAll();
      config.mrpFloodingIs( false );
   }
   for ( Port * const port : ports_ ) {
      if ( !port->enabled && random_.chance( 0.8 ) ) {
         port->agent->enabledIs( *port, true );
      }
      if ( random_.chance( 0.8 ) ) {
         plug( *port, true );
      }
   }
   // What is in flight lands, and open frames leave at the next tick.
   double const lateness = faults_.lateness;
   faults_ = {};
   activity_.advanceBy( 2 * lateness + slack );
   checkAll();
   phaseIs( Phase::settling );
}

void Scene::checkAll() {
   for ( Port * const port : ports_ ) {
      checkAlways( *port, 1.5 * leaveAllTime_ );
      std::string const & fault = port->agent->fault();
      require( fault.empty(), *port, ": ", fault );
   }
}

Book Scene::expected( Port const & port ) const {
   Book heard;
   for ( auto const & link : links_ ) {
      Port const * const neighbour = link->beyond( port );
      if ( !neighbour || !neighbour->isUp() || !port.isUp() ) {
         continue;
      }
      for ( auto const & [kind, value] : neighbour->declared ) {
         if ( !port.agent->refuses( kind ) ) {
            heard[kind] = valuesSettle_ ? value : Bytes();
         }
      }
   }
   return heard;
}

void Scene::checkConvergence() const {
   for ( Port * const port : ports_ ) {
      if ( !port->hasDevice ) {
         continue; // pulled out of an interface that is still wanted: nothing ages there
      }
      Book const there = expected( *port );
      for ( auto const & [kind, value] : there ) {
         require( port->told.contains( kind ), *port, kind,
                  " is declared by a neighbour and not registered" );
      }
      for ( auto const & [kind, value] : port->told ) {
         require( there.contains( kind ) || port->agent->refuses( kind ), *port, kind,
                  " is registered, and no neighbour declares it" );
      }
   }
}

void Scene::phaseIs( Phase phase ) {
   for ( auto const & agent : agents_ ) {
      agent->phaseIs( phase );
   }
}

void Scene::converge( Korv::Seconds within ) {
   activity_.advanceBy( within );
   checkAll();
   checkConvergence();
}

void Scene::verify() {
   // Where agents bridge, each segment settles after the one before it.
   double const hops = agents_[1]->bridges() ? static_cast< double >( links_.size() ) : 1;
   double const period = 1.5 * leaveAllTime_;
   converge( hops * ( 2 * period + settledLeaveTime + slack ) );
   phaseIs( Phase::settled );
   converge( period + settledLeaveTime + slack );

   leaveAllTime_ = 1e6;
   for ( auto const & agent : agents_ ) {
      agent->config().leaveAllTimeIs( leaveAllTime_ );
   }
   converge( 5 );
   for ( Port * const port : ports_ ) {
      checkAtRest( *port, port->hasDevice ? expected( *port ) : Book() );
   }
}

} // namespace Simulation
