// One host of a scene: a participant, and the application that uses it. The application keeps books
// of each port: what it has declared, and what it has been told of by indications. It keeps them by
// the rules of the service interface, never by looking into the participant; Properties.h compares.
#pragma once

#include "tests/support/Participant.h"

#include <deque>
#include <map>
#include <set>
#include <stdexcept>

namespace Simulation {

using namespace TestSupport;

// A property that does not hold.
class Violation : public std::runtime_error {
 public:
   using runtime_error::runtime_error;
};

// An attribute's type and key, wherever it is.
using Kind = Mrp::MrpParsedAttributeKey;
// Values as the database keeps them.
using Book = std::map< Kind, Bytes >;
using Role = Stp::MstiPortStatus::Role;

// How far a scene has come. While there are faults, MVRP frames may be malformed; when all has
// settled, no registration comes or goes.
enum class Phase { disturbed, settling, settled };

class Agent;

// An interface of an agent. Its name is its own in the whole scene: "B1".
struct Port {
   Agent * agent;
   Pelk::IntfId intfId;
   bool enabled = false;
   bool hasDevice = true;
   // Attributes have been removed past the machines, or flushed: their entries in leave timers may
   // outlast them.
   bool swept = false;
   Role roleSeen = Role::unknown; // by the participant
   Book declared = {};
   Book told = {};

   bool isUp() const;
};

class Agent : public Participant {
 public:
   struct Setting {
      std::vector< std::string > interfaces;
      std::optional< U32 > mtu = 1500;
      bool standby = false;
      // Of two ports: declares on each what it is told of on the other, and nothing of its own.
      bool bridges = false;
      // The joins that it discards while it refuses. It never declares one of these: two neighbours
      // that both declare what they refuse answer each other's JoinMt for ever.
      std::set< Kind > refused = {};
      bool refuses = false;
   };
   Agent( Mrp::MrpApplication application, Setting const & setting,
          Memory::VirtualActivity & activity );
   ~Agent() { lib().recording = false; } // the books go before the participant

   // mrpSendAttribute, with the interface queued so many times.
   void send( Port & port, Kind const & kind, Bytes const & value, unsigned event, U32 times = 1 );
   void enabledIs( Port & port, bool enabled );
   void cleanUp( Port & port );
   void cleanUpAttribute( Port & port, Kind const & kind );
   void wakeUp(); // ends the standby
   void refusesIs( bool refuses ) { setting_.refuses = refuses; }
   void roleIs( Port & port, Role role ); // in the common tree
   // The device goes and comes under a port that may stay enabled.
   void deviceIs( Port & port, bool present );

   std::deque< Port > & ports() { return ports_; }
   bool bridges() const { return setting_.bridges; }
   bool standby() const { return setting_.standby; }
   bool refuses() const { return setting_.refuses; }
   bool mayRefuse( Kind const & kind ) const { return setting_.refused.contains( kind ); }
   bool refuses( Kind const & kind ) const { return refuses() && mayRefuse( kind ); }

   void phaseIs( Phase phase ) { phase_ = phase; }
   // The first that went against the phase: a frame that it sent, or an indication.
   std::string const & fault() const { return fault_; }

 private:
   void handleFrame( Pelk::IntfId intfId, Bytes const & frame );
   void handleIndication( Indication const & indication );
   void sweep( Port & port, bool declarationsToo );
   void propagate( Kind const & kind );

   Setting setting_;
   std::deque< Port > ports_;
   Phase phase_ = Phase::disturbed;
   std::string fault_;
   U32 frames_ = 0; // sent, in all
};

inline bool Port::isUp() const { return !agent->standby() && enabled && hasDevice; }

} // namespace Simulation
