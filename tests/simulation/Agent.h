// One host of a scene: a participant, the application that uses it, and the application's books:
// what it has declared, and what it has been told of by indications. It keeps both by the rules of
// the service interface, never by looking into the participant; Properties.h compares.
#pragma once

#include "tests/support/Participant.h"

#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace Simulation {

using namespace TestSupport;

// A property that does not hold.
class Violation : public std::runtime_error {
 public:
   using runtime_error::runtime_error;
};

// An attribute type and a key: what is declared, wherever.
struct Kind {
   U8 type = 0;
   U64 key = 0;
   auto operator<=>( Kind const & ) const = default;
};
// The attribute of that kind on one port.
struct Name {
   U32 port = 0;
   Kind kind;
   auto operator<=>( Name const & ) const = default;
};
std::ostream & operator<<( std::ostream & out, Name const & name );

// By name, values as the database keeps them.
using Book = std::map< Name, Bytes >;

using Role = Stp::MstiPortStatus::Role;

class Agent {
 public:
   struct Setting {
      U32 number = 0;
      Mrp::MrpApplication application = Mrp::MVRP;
      U32 ports = 1;
      std::optional< U32 > mtu;
      bool standby = false;
      // Of two ports: declares on each what it is told of on the other, and nothing of its own.
      bool bridges = false;
      // The joins that it discards while it refuses. It never declares one of these: two neighbours
      // that both declare what they refuse answer each other's JoinMt for ever.
      std::set< Kind > refused;
      bool refuses = false;
      bool readsFrames = true; // each that leaves, by the strict reader
   };
   // Says in words what happens, if given where.
   Agent( Setting const & setting, Memory::VirtualActivity & activity, std::ostream * words );

   // mrpSendAttribute, with the interface queued so many times.
   void send( Name const & name, Bytes const & value, unsigned event, U32 times = 1 );
   void enabledIs( U32 port, bool enabled );
   void cleanUp( U32 port );
   void cleanUpAttribute( Name const & name );
   void transmitAllLeaveAll( U32 port );
   void endStandby();
   void refusesIs( bool refuses );
   void roleIs( U32 port, Role role ); // in the common tree
   // The device goes and comes under a port that may stay enabled.
   void deviceIs( U32 port, bool present );

   U32 number() const { return setting_.number; }
   U32 ports() const { return setting_.ports; }
   bool bridges() const { return setting_.bridges; }
   bool standby() const { return setting_.standby; }
   bool refuses() const { return setting_.refuses; }
   bool mayRefuse( Kind const & kind ) const { return setting_.refused.contains( kind ); }
   bool refuses( Kind const & kind ) const { return refuses() && mayRefuse( kind ); }
   bool enabled( U32 port ) const { return ports_[port].enabled; }
   bool hasDevice( U32 port ) const { return ports_[port].device; }
   bool isUp( U32 port ) const { return !standby() && enabled( port ) && hasDevice( port ); }

   Book const & declared() const { return declared_; }
   Book const & told() const { return told_; }
   // Key 0 of this type has been registered there.
   bool hasHadKeyZero( U32 port, U8 type ) const {
      return keyZero_.contains( { port, { type, 0 } } );
   }
   // Attributes have been removed from the port past the machines, or flushed: their entries in
   // leave timers may outlast them.
   bool isSwept( U32 port ) const { return ports_[port].swept; }
   // Registrations that came or went. A join may be indicated again and again: a domain's, a New,
   // and any with another value.
   U64 changesTold() const { return changesTold_; }
   // What was wrong with the first wrong frame that it sent since the last time it was asked.
   std::string takeFrameFault() { return std::exchange( frameFault_, {} ); }

   Participant & participant() const { return *participant_; }
   Mrp::MrpSm & sm() const { return participant_->sm(); }
   Mrp::MrpConfig & config() const { return participant_->config(); }
   static std::string interface( U32 port ) { return "Ethernet" + std::to_string( port + 1 ); }
   static Pelk::IntfId intfId( U32 port ) { return Pelk::IntfId( interface( port ) ); }
   static U32 portOf( Pelk::IntfId const & intfId ) { return intfId == Agent::intfId( 0 ) ? 0 : 1; }

 private:
   struct Port {
      bool enabled = false;
      bool device = true;
      bool swept = false;
      Role roleSeen = Role::unknown; // by the participant
   };

   void handleFrame( std::string const & interface, Bytes const & frame );
   void handleIndication( Indication const & indication );
   void sweep( Book & book, U32 port );
   void sweepAll( U32 port );
   void propagate( Kind const & kind );
   void propagateAll();
   void note( std::string const & text ) const;

   Setting setting_;
   std::ostream * words_;
   std::vector< Port > ports_;
   Book declared_;
   Book told_;
   std::set< Name > keyZero_;
   U64 changesTold_ = 0;
   std::string frameFault_;
   U32 frames_ = 0; // sent, in all
   std::unique_ptr< Participant > participant_;
};

// A port of an agent.
struct End {
   Agent * agent;
   U32 port;
   bool operator==( End const & ) const = default;

   bool isUp() const { return agent->isUp( port ); }
   bool hasDevice() const { return agent->hasDevice( port ); }
   Pelk::IntfId intfId() const { return Agent::intfId( port ); }
   Memory::Host & host() const { return agent->participant().host(); }
};

} // namespace Simulation
