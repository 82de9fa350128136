#include "tests/simulation/Scene.h"

#include <cstdlib>

namespace Simulation {

namespace {

constexpr Korv::Seconds settledLeaveAllTime = 6;
constexpr Korv::Seconds settledLeaveTime = 1.2;
constexpr Korv::Seconds slack = 0.5; // for ticks and wires

} // namespace

Scene::Scene( Mrp::MrpApplication application, U64 seed, Trace & trace )
   : application_( application ), random_( seed ), trace_( trace ),
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
      agents_.push_back( std::make_unique< Agent >( setting, activity_, trace_ ) );
   }
   std::vector< End > ends;
   for ( auto const & agent : agents_ ) {
      ends.push_back( { agent.get(), 0 } );
   }
   if ( shape >= chain ) {
      for ( U32 i = 0; i + 1 < count; ++i ) {
         buildSegment( { { agents_[i].get(), agents_[i]->ports() - 1 }, ends[i + 1] } );
      }
   } else {
      buildSegment( ends );
   }
   for ( Attribute & attribute : attributes_ ) {
      attribute.agent = random_.below( count );
      attribute.port = random_.below( agents_[attribute.agent]->ports() );
   }
   for ( auto const & agent : agents_ ) {
      for ( U32 port = 0; port < agent->ports(); ++port ) {
         if ( random_.chance( 0.9 ) ) {
            agent->enabledIs( port, true );
         }
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
   auto const add = [&]( U8 type, U64 key, bool changes = false ) {
      attributes_.push_back( { { type, key }, changes } );
   };
   if ( application_ == Mrp::MVRP ) {
      U64 const first = large_ ? 1 : 1 + random_.below( 4000 );
      for ( U64 id = first; id < first + ( large_ ? 4094 : run ); ++id ) {
         add( vlanType, id );
      }
      for ( U32 i = 0; i < apart; ++i ) {
         add( vlanType, 1 + random_.below( 4095 ) );
      }
      if ( keyZero ) {
         add( vlanType, 0 );
      }
      return;
   }
   for ( U8 const type : { talkerType, failedType, listenerType } ) {
      for ( U64 i = 0; i < run; ++i ) {
         add( type, 0x8000'0000'0000'0100 + i );
      }
      for ( U64 i = 0; i < apart; ++i ) {
         add( type, 0x1000 + 16 * i, true );
      }
      if ( keyZero ) {
         add( type, 0 );
      }
   }
   add( domainType, 5 );
   add( domainType, 6 );
}

Agent::Setting Scene::buildSetting( U32 number ) {
   using Mtu = std::optional< U32 >;
   Agent::Setting setting;
   setting.number = number;
   setting.application = application_;
   setting.standby = random_.chance( 0.15 );
   setting.mtu =
      random_.oneOf( { Mtu( 1500 ), Mtu( 1500 ), Mtu(), Mtu( 9000 ), Mtu( 300 ), Mtu( 1 ) } );
   if ( large_ ) {
      setting.mtu = 1500;
   }
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

void Scene::buildSegment( std::vector< End > ends ) {
   Segment segment;
   double const delay = random_.oneOf( { 0.0, 0.001, 0.013, 0.05 } );
   for ( std::size_t i = 0; i < ends.size(); ++i ) {
      for ( std::size_t j = i + 1; j < ends.size(); ++j ) {
         auto wire = std::make_unique< FaultyWire >( random_, delay );
         for ( End const & end : { ends[i], ends[j] } ) {
            wire->join( end.agent->participant().host().device( Agent::intfId( end.port ) ) );
         }
         segment.pairs.push_back( { ends[i], ends[j], std::move( wire ) } );
      }
   }
   segment.ends = std::move( ends );
   segments_.push_back( std::move( segment ) );
}

Bytes Scene::valueOf( Attribute const & attribute, U32 variant ) const {
   U64 const key = attribute.kind.key;
   if ( application_ == Mrp::MVRP ) {
      return stored( Vlan{ static_cast< U16 >( key ) } );
   }
   variant = attribute.changes ? variant : 0;
   Talker value = talker( key );
   value.accumulatedLatency += variant;
   switch ( attribute.kind.type ) {
   case talkerType: return stored( value );
   case failedType: return stored( FailedTalker{ value } );
   case listenerType:
      return stored( Listener{ key, static_cast< Declaration >( 1 + variant % 3 ) } );
   default: return stored( Domain{ static_cast< U8 >( key ), static_cast< U8 >( key - 3 ) } );
   }
}

std::vector< Scene::Operation > const & Scene::operations() {
   static std::vector< Operation > const all{
      { 44, false,
        []( Scene & s, Agent & agent, U32 port ) {
           // Declared and withdrawn, for the most part; the rest does not declare anything.
           unsigned const event = s.random_.oneOf( { 0u, 1u, 1u, 1u, 1u, 3u, 3u, 5u, 5u, 5u, 6u, 7u,
                                                     s.random_.oneOf( { 2u, 4u, 8u, 255u } ) } );
           s.say( agent, port, s.anyAttribute(), event,
                  s.random_.oneOf( { 0u, 1u, 1u, 1u, 1u, 1u, 1u, 1u, 2u } ) );
        } },
      { 3, false,
        []( Scene & s, Agent & agent, U32 port ) {
           unsigned const event = s.random_.oneOf( { 1u, 1u, 5u } );
           std::size_t const step = 1 + s.random_.below( 2 );
           for ( std::size_t i = s.random_.below( s.attributes_.size() ); i < s.attributes_.size();
                 i += step ) {
              s.say( agent, port, s.attributes_[i], event );
           }
        } },
      { 4, true,
        []( Scene &, Agent & agent, U32 port ) {
           agent.enabledIs( port, !agent.enabled( port ) );
        } },
      { 2, false, []( Scene &, Agent & agent, U32 port ) { agent.cleanUp( port ); } },
      { 2, false,
        []( Scene & s, Agent & agent, U32 port ) {
           agent.cleanUpAttribute( { port, s.anyAttribute().kind } );
        } },
      { 3, false, []( Scene &, Agent & agent, U32 port ) { agent.transmitAllLeaveAll( port ); } },
      { 5, true, []( Scene & s, Agent & agent, U32 port ) { s.configure( agent, port ); } },
      { 2, true,
        []( Scene & s, Agent & agent, U32 port ) {
           // A wire knows a sender by its device: what it has sent lands before it comes back.
           s.plug( { &agent, port }, false );
           s.activity_.advanceBy( 2 );
           s.plug( { &agent, port }, s.random_.chance( 0.9 ) );
        } },
      { 3, true,
        []( Scene & s, Agent &, U32 ) {
           auto & pairs = s.segments_[s.random_.below( s.segments_.size() )].pairs;
           pairs[s.random_.below( pairs.size() )].wire->cutIs( s.random_.chance( 0.5 ) );
        } },
      { 2, true, []( Scene &, Agent & agent, U32 ) { agent.refusesIs( !agent.refuses() ); } },
      { 4, true,
        []( Scene & s, Agent & agent, U32 port ) {
           agent.roleIs( port, s.random_.oneOf( { Role::unknown, Role::root, Role::designated,
                                                  Role::alternate, Role::alternate } ) );
        } },
      { 2, true,
        []( Scene &, Agent & agent, U32 ) {
           if ( agent.standby() ) {
              agent.endStandby();
           }
        } },
   };
   return all;
}

// A few of them meet again and again.
Scene::Attribute const & Scene::anyAttribute() {
   std::size_t const few = std::min< std::size_t >( attributes_.size(), 3 );
   return attributes_[random_.below( random_.chance( 0.5 ) ? few : attributes_.size() )];
}

void Scene::say( Agent & agent, U32 port, Attribute const & attribute, unsigned event, U32 times ) {
   bool const isHere = attribute.agent == agent.number() && attribute.port == port;
   if ( !agent.bridges() && !agent.mayRefuse( attribute.kind ) &&
        ( !attribute.changes || isHere ) ) {
      agent.send( { port, attribute.kind }, valueOf( attribute, random_.below( 3 ) ), event,
                  times );
   }
}

void Scene::configure( Agent & agent, U32 port ) {
   Mrp::MrpConfig & config = agent.config();
   Pelk::IntfId const intfId = Agent::intfId( port );
   double const leave = random_.oneOf( { 0.05, 0.3, 0.6, 2.0, 5.0 } );
   double const leaveAll = random_.oneOf( { 0.2, 1.0, 3.0, 10.0, 60.0 } );
   switch ( random_.below( 8 ) ) {
   case 0: config.leaveTimeIs( leave ); break;
   case 1: config.leaveAllTimeIs( leaveAll ); break;
   case 2: config.txLeaveAllExpiryTimeIs( leave ); break;
   case 3: config.intfLeaveTimeIs( intfId, leave ); break;
   case 4: config.intfLeaveAllTimeIs( intfId, leaveAll ); break;
   case 5: config.intfLeaveAllTimeDel( intfId ); break;
   case 6: config.timersEnabledIs( random_.chance( 0.5 ) ); break;
   default: config.mrpFloodingIs( random_.chance( 0.3 ) ); break;
   }
}

void Scene::plug( End const & end, bool in ) {
   if ( in == end.agent->hasDevice( end.port ) ) {
      return;
   }
   Memory::Host & host = end.agent->participant().host();
   Korv::Ptr< Memory::Device > const leaving = host.device( Agent::intfId( end.port ) );
   end.agent->deviceIs( end.port, in );
   for ( Segment & segment : segments_ ) {
      for ( Segment::Pair & pair : segment.pairs ) {
         if ( pair.one != end && pair.other != end ) {
            continue;
         }
         if ( in ) {
            pair.wire->join( host.device( Agent::intfId( end.port ) ) );
         } else {
            pair.wire->leave( *leaving );
         }
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
   for ( Segment & segment : segments_ ) {
      for ( Segment::Pair & pair : segment.pairs ) {
         pair.wire->faultsIs( faults_ );
      }
   }
   U32 weights = 0;
   for ( Operation const & operation : operations() ) {
      weights += operation.weight;
   }
   double const end = large_ ? 3 : random_.between( 3, 20 );
   double const pace = random_.oneOf( { 0.02, 0.2, 0.6 } );
   while ( activity_.clock()->now() < end ) {
      Agent & agent = *random_.oneOf( agents_ );
      U32 pick = random_.below( weights );
      auto operation = operations().begin();
      for ( ; pick >= operation->weight; ++operation ) {
         pick -= operation->weight;
      }
      if ( operation->inStandby || !agent.standby() ) {
         operation->run( *this, agent, random_.below( agent.ports() ) );
      }
      checkAll();
      // Many operations share a time; others fall on a tick.
      if ( random_.chance( 0.7 ) ) {
         activity_.advanceBy( random_.chance( 0.2 ) ? 0.1 : random_.between( 0, pace ) );
         checkAll();
      }
   }
}

void Scene::settle() {
   trace_.line( activity_.clock()->now(), 0, "faults and operations end" );
   leaveAllTime_ = settledLeaveAllTime;
   for ( Segment & segment : segments_ ) {
      for ( Segment::Pair & pair : segment.pairs ) {
         pair.wire->cutIs( false );
         pair.wire->faultsIs( {} );
      }
   }
   for ( auto const & agent : agents_ ) {
      if ( agent->standby() && random_.chance( 0.8 ) ) {
         agent->endStandby();
      }
      Mrp::MrpConfig & config = agent->config();
      config.leaveTimeIs( random_.oneOf( { 0.6, 1.0, settledLeaveTime } ) );
      config.txLeaveAllExpiryTimeIs( random_.oneOf( { 0.6, 0.6, 0.8, settledLeaveTime } ) );
      config.leaveAllTimeIs( random_.between( 0.7, 1 ) * leaveAllTime_ );
      config.intfLeaveTimeDelAll();
      config.intfLeaveAllTimeDelAll();
      config.mrpFloodingIs( agent->ports() > 1 && random_.chance( 0.1 ) );
      for ( U32 port = 0; port < agent->ports(); ++port ) {
         if ( random_.chance( 0.2 ) ) {
            config.intfLeaveTimeIs( Agent::intfId( port ), 0.8 );
            config.intfLeaveAllTimeIs( Agent::intfId( port ), leaveAllTime_ );
         }
         if ( !agent->enabled( port ) && random_.chance( 0.8 ) ) {
            agent->enabledIs( port, true );
         }
         if ( random_.chance( 0.8 ) ) {
            plug( { agent.get(), port }, true );
         }
      }
   }
   // What is in flight lands, and open frames leave at the next tick.
   activity_.advanceBy( 2 * faults_.lateness + slack );
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
      require( fault.empty() || ( application_ == Mrp::MVRP && !settled_ ), *agent,
               "sends " + fault );
   }
}

bool Scene::isHeard( End const & end ) const {
   return end.agent->isUp( end.port ) && !end.agent->config().mrpFlooding();
}

// Of the segments of a chain, those between which all agents flood.
bool Scene::hears( std::size_t segment, std::size_t other ) const {
   for ( std::size_t i = std::min( segment, other ); i < std::max( segment, other ); ++i ) {
      Agent & between = *agents_[i + 1];
      if ( !between.config().mrpFlooding() || !between.isUp( 0 ) || !between.isUp( 1 ) ) {
         return false;
      }
   }
   return true;
}

Book Scene::expected( End const & end ) const {
   Book expected;
   // In a chain a port 1 leads to the segment behind its agent.
   std::size_t const own =
      segments_.size() == 1 ? 0 : end.agent->number() + end.port - ( end.agent->number() > 0 );
   for ( std::size_t i = 0; isHeard( end ) && i < segments_.size(); ++i ) {
      for ( End const & other : segments_[i].ends ) {
         if ( other == end || !isHeard( other ) || !hears( own, i ) ) {
            continue;
         }
         for ( auto const & [name, value] : other.agent->declared() ) {
            if ( name.port == other.port && !end.agent->refuses( name.kind ) ) {
               expected[{ end.port, name.kind }] = valuesSettle_ ? value : Bytes();
            }
         }
      }
   }
   return expected;
}

void Scene::checkConvergence() const {
   for ( auto const & agent : agents_ ) {
      for ( U32 port = 0; port < agent->ports(); ++port ) {
         if ( !agent->hasDevice( port ) ) {
            continue; // pulled out of an interface that is still wanted: nothing ages there
         }
         Book const there = expected( { agent.get(), port } );
         for ( auto const & [name, value] : there ) {
            require( agent->told().contains( name ), *agent, name,
                     "declared by a neighbour and not registered" );
         }
         for ( auto const & [name, value] : agent->told() ) {
            require( name.port != port || there.contains( name ) || agent->refuses( name.kind ),
                     *agent, name, "registered, and no neighbour declares it" );
         }
      }
   }
}

void Scene::verify() {
   // Where agents bridge, each segment settles after the one before it.
   bool const bridged = agents_.size() > 2 && agents_[1]->bridges();
   double const hops = bridged ? static_cast< double >( segments_.size() ) : 1;
   double const period = 1.5 * leaveAllTime_;
   activity_.advanceBy( hops * ( 2 * period + settledLeaveTime + slack ) );
   checkAll();
   checkConvergence();

   std::vector< U64 > changes;
   for ( auto const & agent : agents_ ) {
      changes.push_back( agent->changesTold() );
   }
   std::set< std::pair< Agent *, Name > > rested;
   double const end = activity_.clock()->now() + period + settledLeaveTime + slack;
   while ( activity_.clock()->now() < end ) {
      activity_.advanceBy( 0.05 );
      for ( auto const & agent : agents_ ) {
         for ( U32 port = 0; port < agent->ports(); ++port ) {
            for ( U8 type = 1; type <= agent->sm().maxAttrTypes(); ++type ) {
               std::pair const place( agent.get(), Name{ port, { type, 0 } } );
               if ( agent->hasDevice( port ) && !rested.contains( place ) &&
                    isAtRest( *agent, port, type ) ) {
                  checkAtRest( *agent, port, type, expected( { agent.get(), port } ) );
                  rested.insert( place );
               }
            }
         }
      }
   }
   checkAll();
   checkConvergence();
   for ( std::size_t i = 0; i < agents_.size(); ++i ) {
      Agent & agent = *agents_[i];
      require( agent.changesTold() == changes[i], agent,
               "told of a change when all should have settled" );
      for ( U32 port = 0; port < agent.ports(); ++port ) {
         for ( U8 type = 1; type <= agent.sm().maxAttrTypes(); ++type ) {
            require( !agent.hasDevice( port ) ||
                        rested.contains( { &agent, { port, { type, 0 } } } ),
                     agent, { port, { type, 0 } }, "does not come to rest" );
         }
      }
   }
}

} // namespace Simulation
