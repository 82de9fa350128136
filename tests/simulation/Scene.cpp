#include "tests/simulation/Scene.h"

#include <cstdlib>

namespace Simulation {

namespace {

constexpr Korv::Seconds settledLeaveAllTime = 6;
constexpr Korv::Seconds settledLeaveTime = 1.2;
constexpr Korv::Seconds slack = 0.5; // for ticks and wires

bool isHeard( End const & end ) { return end.isUp() && !end.agent->config().mrpFlooding(); }

} // namespace

Scene::Scene( Mrp::MrpApplication application, U64 seed, std::ostream * words )
   : application_( application ), random_( seed ), words_( words ),
     large_( random_.chance( 0.02 ) ) {
   srand( static_cast< unsigned >( seed ) );
}

void Scene::run() {
   build();
   disturb();
   settle();
   verify();
}

void Scene::build() {
   buildAttributes();
   // A pair, hosts on one segment, or a chain whose inner agents have two ports and may bridge.
   enum Shape { pair, shared, chain, bridges };
   Shape const shape = random_.oneOf( { pair, pair, pair, pair, shared, chain, chain, bridges } );
   valuesSettle_ = valuesSettle_ && shape != shared;
   U32 const count = shape == pair ? 2 : 3 + random_.below( large_ ? 1 : 2 );
   for ( U32 number = 0; number < count; ++number ) {
      Agent::Setting setting = buildSetting( number );
      bool const inner = shape >= chain && number > 0 && number + 1 < count;
      setting.ports = inner ? 2 : 1;
      setting.bridges = inner && shape == bridges;
      agents_.push_back( std::make_unique< Agent >( setting, activity_, words_ ) );
      for ( U32 port = 0; port < setting.ports; ++port ) {
         ends_.push_back( { agents_.back().get(), port } );
      }
   }
   for ( U32 i = 0; i < count; ++i ) {
      End const last{ agents_[i].get(), agents_[i]->ports() - 1 };
      for ( U32 j = i + 1; j < ( shape >= chain ? std::min( i + 2, count ) : count ); ++j ) {
         links_.push_back(
            std::make_unique< Link >( random_, faults_, last, End{ agents_[j].get(), 0 } ) );
      }
   }
   for ( Attribute & attribute : attributes_ ) {
      attribute.home = random_.oneOf( ends_ );
   }
   for ( auto const & [agent, port] : ends_ ) {
      if ( random_.chance( 0.9 ) ) {
         agent->enabledIs( port, true );
      }
   }
}

// Neighbours share vectors, and in a vector the FirstValue speaks for all: values that change stand
// apart from all others.
void Scene::buildAttributes() {
   U32 const many = large_ ? 300 : random_.chance( 0.1 ) ? 60 : 6;
   valuesSettle_ = many == 6;
   U32 const run = 1 + random_.below( many );
   U32 const apart = random_.below( many );
   bool const keyZero = random_.chance( 0.1 );
   bool const isMvrp = application_ == Mrp::MVRP;
   for ( U8 type = 1; type <= ( isMvrp ? vlanType : listenerType ); ++type ) {
      U64 const first = !isMvrp ? 0x8000'0000'0000'0100 : large_ ? 1 : 1 + random_.below( 4000 );
      for ( U64 i = 0; i < ( isMvrp && large_ ? 4094 : run ); ++i ) {
         attributes_.push_back( { { type, first + i }, false } );
      }
      for ( U64 i = 0; i < apart; ++i ) {
         U64 const key = isMvrp ? 1 + random_.below( 4095 ) : 0x1000 + 16 * i;
         attributes_.push_back( { { type, key }, !isMvrp } );
      }
      if ( keyZero ) {
         attributes_.push_back( { { type, 0 }, false } );
      }
   }
   if ( !isMvrp ) {
      attributes_.push_back( { { domainType, 5 }, false } );
      attributes_.push_back( { { domainType, 6 }, false } );
   }
}

Agent::Setting Scene::buildSetting( U32 number ) {
   using Mtu = std::optional< U32 >;
   Agent::Setting setting;
   setting.number = number;
   setting.application = application_;
   setting.standby = random_.chance( 0.15 );
   setting.mtu =
      large_
         ? Mtu( 1500 )
         : random_.oneOf( { Mtu( 1500 ), Mtu( 1500 ), Mtu(), Mtu( 9000 ), Mtu( 300 ), Mtu( 1 ) } );
   valuesSettle_ = valuesSettle_ && setting.mtu.value_or( 1500 ) >= 1500;
   setting.readsFrames = !large_;
   setting.refuses = random_.chance( 0.3 );
   for ( Attribute const & attribute : attributes_ ) {
      if ( setting.refuses && !attribute.changes && random_.chance( 0.2 ) ) {
         setting.refused.insert( attribute.kind );
      }
   }
   return setting;
}

void Scene::operate() {
   End const & end = random_.oneOf( ends_ );
   auto const & [agent, port] = end;
   bool const isAwake = !agent->standby();
   if ( random_.chance( 0.6 ) ) {
      if ( isAwake ) {
         sayAnything( end );
      }
      return;
   }
   switch ( random_.below( isAwake ? 11 : 7 ) ) {
   case 0: agent->enabledIs( port, !agent->enabled( port ) ); break;
   case 1: configure( end ); break;
   case 2:
      // A wire knows a sender by its device: what it has sent lands before it comes back.
      plug( end, false );
      activity_.advanceBy( 2 );
      plug( end, random_.chance( 0.9 ) );
      break;
   case 3: random_.oneOf( links_ )->cutIs( random_.chance( 0.5 ) ); break;
   case 4: agent->refusesIs( !agent->refuses() ); break;
   case 5:
      agent->roleIs( port, random_.oneOf( { Role::unknown, Role::root, Role::designated,
                                            Role::alternate, Role::alternate } ) );
      break;
   case 6: agent->endStandby(); break;
   case 7: sayMuch( end ); break;
   case 8: agent->cleanUp( port ); break;
   case 9: agent->cleanUpAttribute( { port, anyAttribute().kind } ); break;
   default: agent->transmitAllLeaveAll( port ); break;
   }
}

// A few of them meet again and again.
Scene::Attribute const & Scene::anyAttribute() {
   std::size_t const few = std::min< std::size_t >( attributes_.size(), 3 );
   return attributes_[random_.below( random_.chance( 0.5 ) ? few : attributes_.size() )];
}

void Scene::say( End const & end, Attribute const & attribute, unsigned event, U32 times ) {
   Agent & agent = *end.agent;
   auto const [type, key] = attribute.kind;
   U32 const variant = attribute.changes ? random_.below( 3 ) : 0;
   if ( !agent.bridges() && !agent.mayRefuse( attribute.kind ) &&
        ( !attribute.changes || attribute.home == end ) ) {
      agent.send( { end.port, attribute.kind },
                  storedValue( agent.participant().protocol(), type, key, variant ), event, times );
   }
}

// Declares and withdraws, for the most part; the rest does not declare anything.
void Scene::sayAnything( End const & end ) {
   unsigned const event = random_.oneOf(
      { 0u, 1u, 1u, 1u, 1u, 3u, 3u, 5u, 5u, 5u, 6u, 7u, random_.oneOf( { 2u, 4u, 8u, 255u } ) } );
   U32 const times = random_.oneOf( { 0u, 1u, 1u, 1u, 1u, 1u, 1u, 1u, 2u } );
   say( end, anyAttribute(), event, times );
}

void Scene::sayMuch( End const & end ) {
   unsigned const event = random_.oneOf( { 1u, 1u, 5u } );
   U32 const step = 1 + random_.below( 2 );
   for ( auto i = random_.below( attributes_.size() ); i < attributes_.size(); i += step ) {
      say( end, attributes_[i], event );
   }
}

void Scene::configure( End const & end ) {
   Mrp::MrpConfig & config = end.agent->config();
   double const leave = random_.oneOf( { 0.05, 0.3, 0.6, 2.0, 5.0 } );
   double const leaveAll = random_.oneOf( { 0.2, 1.0, 3.0, 10.0, 60.0 } );
   switch ( random_.below( 8 ) ) {
   case 0: config.leaveTimeIs( leave ); break;
   case 1: config.leaveAllTimeIs( leaveAll ); break;
   case 2: config.txLeaveAllExpiryTimeIs( leave ); break;
   case 3: config.intfLeaveTimeIs( end.intfId(), leave ); break;
   case 4: config.intfLeaveAllTimeIs( end.intfId(), leaveAll ); break;
   case 5: config.intfLeaveAllTimeDel( end.intfId() ); break;
   case 6: config.timersEnabledIs( random_.chance( 0.5 ) ); break;
   default: config.mrpFloodingIs( random_.chance( 0.3 ) ); break;
   }
}

void Scene::plug( End const & end, bool in ) {
   if ( in == end.hasDevice() ) {
      return;
   }
   Korv::Ptr< Memory::Device > const leaving = end.host().device( end.intfId() );
   end.agent->deviceIs( end.port, in );
   for ( auto const & link : links_ ) {
      if ( link->beyond( end ) && in ) {
         link->plug( end );
      } else if ( link->beyond( end ) ) {
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
   double const end = large_ ? 3 : random_.between( 3, 20 );
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
         agent->endStandby();
      }
      Mrp::MrpConfig & config = agent->config();
      config.leaveTimeIs( random_.oneOf( { 0.6, 1.0, settledLeaveTime } ) );
      config.txLeaveAllExpiryTimeIs( random_.oneOf( { 0.6, 0.6, 0.8, settledLeaveTime } ) );
      config.leaveAllTimeIs( random_.between( 0.7, 1 ) * leaveAllTime_ );
      config.intfLeaveTimeDelAll();
      config.intfLeaveAllTimeDelAll();
      config.mrpFloodingIs( agent->ports() > 1 && random_.chance( 0.1 ) );
   }
   for ( End const & end : ends_ ) {
      if ( random_.chance( 0.2 ) ) {
         end.agent->config().intfLeaveTimeIs( end.intfId(), 0.8 );
         end.agent->config().intfLeaveAllTimeIs( end.intfId(), leaveAllTime_ );
      }
      if ( !end.agent->enabled( end.port ) && random_.chance( 0.8 ) ) {
         end.agent->enabledIs( end.port, true );
      }
      if ( random_.chance( 0.8 ) ) {
         plug( end, true );
      }
   }
   // What is in flight lands, and open frames leave at the next tick.
   double const lateness = faults_.lateness;
   faults_ = {};
   activity_.advanceBy( 2 * lateness + slack );
   checkAll();
   settled_ = true;
}

void Scene::checkAll() {
   if ( large_ && checks_++ % 20 != 0 ) {
      return;
   }
   for ( auto const & agent : agents_ ) {
      checkAlways( *agent, 1.5 * leaveAllTime_ );
      std::string const fault = agent->takeFrameFault();
      require( fault.empty() || ( application_ == Mrp::MVRP && !settled_ ), *agent, "sends ",
               fault );
   }
}

void Scene::gather( End const & end, End const & from, Book & heard ) const {
   for ( auto const & link : links_ ) {
      End const * const other = link->beyond( from );
      if ( !other ) {
         continue;
      }
      Agent const & neighbour = *other->agent;
      for ( auto const & [name, value] : neighbour.declared() ) {
         if ( isHeard( *other ) && name.port == other->port && !end.agent->refuses( name.kind ) ) {
            heard[{ end.port, name.kind }] = valuesSettle_ ? value : Bytes();
         }
      }
      if ( neighbour.ports() == 2 && neighbour.config().mrpFlooding() && neighbour.isUp( 0 ) &&
           neighbour.isUp( 1 ) ) {
         gather( end, { other->agent, 1 - other->port }, heard );
      }
   }
}

Book Scene::expected( End const & end ) const {
   Book heard;
   if ( isHeard( end ) ) {
      gather( end, end, heard );
   }
   return heard;
}

void Scene::checkConvergence() const {
   for ( End const & end : ends_ ) {
      if ( !end.hasDevice() ) {
         continue; // pulled out of an interface that is still wanted: nothing ages there
      }
      Agent const & agent = *end.agent;
      Book const there = expected( end );
      for ( auto const & [name, value] : there ) {
         require( agent.told().contains( name ), agent, name,
                  " is declared by a neighbour and not registered" );
      }
      for ( auto const & [name, value] : agent.told() ) {
         require( name.port != end.port || there.contains( name ) || agent.refuses( name.kind ),
                  agent, name, " is registered, and no neighbour declares it" );
      }
   }
}

void Scene::verify() {
   // Where agents bridge, each segment settles after the one before it.
   double const hops = agents_[1]->bridges() ? static_cast< double >( links_.size() ) : 1;
   double const period = 1.5 * leaveAllTime_;
   activity_.advanceBy( hops * ( 2 * period + settledLeaveTime + slack ) );
   checkAll();
   checkConvergence();

   std::map< Agent *, U64 > changes;
   for ( auto const & agent : agents_ ) {
      changes[agent.get()] = agent->changesTold();
   }
   activity_.advanceBy( period + settledLeaveTime + slack );
   checkAll();
   checkConvergence();

   leaveAllTime_ = 1e6;
   for ( auto const & agent : agents_ ) {
      agent->config().intfLeaveAllTimeDelAll();
      agent->config().leaveAllTimeIs( leaveAllTime_ );
   }
   activity_.advanceBy( 5 );
   checkAll();
   checkConvergence();
   for ( auto const & agent : agents_ ) {
      Book there;
      for ( End const & end : ends_ ) {
         if ( end.agent == agent.get() && end.hasDevice() ) {
            there.merge( expected( end ) );
         }
      }
      checkAtRest( *agent, there );
      require( agent->changesTold() == changes[agent.get()], *agent,
               "is told of a change when all should have settled" );
   }
}

} // namespace Simulation
