// The application of a participant, kept honest: what it declares is what it wants declared.
//
// A subclass says what it wants: settle() looks at some attributes and calls declare or withdraw
// for each interface, as often as it likes; only what differs from what was said last is said. All
// else stands here: when it is asked, how it is said, what happens when an interface goes.
//
// When. Nothing is declared from within an indication. An indication, and whatever else may change
// what is wanted, only makes a note of the attribute; a pass, in a notification of its own right
// behind the one at hand, settles all that has been noted. The engine would take a declaration
// within an indication, as mrpSendAttribute puts the parse context back; but an indication stands
// in the middle of a frame, and a pass sees what the whole frame came to: a VLAN that moves from
// one port to another does not flap, and a change of role counts once all that react to it have
// done so. What a pass says leaves with the next transmit period, together.
//
// How. A declaration is a Join, but for two cases that are a New, which is always said: the value
// is another one than before, or the applicant is a quiet observer and thinks that the neighbour
// has the attribute already, which need not be so any more.
//
// It takes part on an interface while its link is up. On one without packet access, for whatever
// reason, nothing is declared; one that gets it declares everything, whatever was said before, and
// asks its neighbours for the same by a LeaveAll: they would not know otherwise that there is
// somebody new, and would say nothing before the next LeaveAll that is due.
//
// Whoever is told of joins and leaves hears of the end of every registration: also of those that
// the engine ends with no indication, in a flush and with an interface that goes.
#pragma once

#include "mrp/frame/MrpLib.h"
#include "mrp/platform/interface/EthDevPamCollection.h"
#include "mrp/platform/korv/Clock.h"

#include "command/report/Timeline.h"
#include "command/report/ValueRecord.h"
#include "command/run/LinkWatch.h"

#include <functional>
#include <map>
#include <set>
#include <vector>

namespace Command {

using Korv::U64;
using Korv::U8;

class DeclaringLib : public Mrp::MrpLib {
 public:
   // Told of each join and each leave.
   using Tell = std::function< void( Happening const & ) >;

   explicit DeclaringLib( Tell tell );
   ~DeclaringLib() override;

   // Once, when the participant is there: takes part on the interfaces, from the next round of the
   // loop on.
   void start( std::vector< Pelk::IntfId > const & interfaces );
   // Withdraws all that was declared, lets it leave, and takes part no more.
   void stop();

   bool mrpJoinIndication( Mrp::MrpParameters const & indication ) override;
   void mrpLeaveIndication( Mrp::MrpParameters const & indication ) override;

 protected:
   using Keys = std::set< U64 >;

   // Declares and withdraws what is to be of these attributes, of all types, on all interfaces.
   virtual void settle( Keys const & keys ) = 0;
   // The attributes that a declaration may be wanted of, or be there of.
   virtual Keys allKeys() const = 0;

   void settleLater( U64 key );
   void settleAllLater();

   std::vector< Pelk::IntfId > const & interfaces() const { return interfaces_; }
   // Of one type, on any interface: what the participant knows, and what is declared.
   Keys knownKeys( U8 attributeType ) const;
   bool isRegistered( Pelk::IntfId intfId, U8 attributeType, U64 key ) const;

   // From settle alone. With isNew it is said again, and as a New.
   template < class Kind >
   void declare( Pelk::IntfId intfId, typename Kind::Value const & value, bool isNew = false );
   template < class Kind >
   void withdraw( Pelk::IntfId intfId, U64 key ) {
      withdraw( intfId, Name{ Kind::type, key } );
   }
   // From settle alone: has the interface's neighbours declare anew, when all is settled.
   void askNeighbours( Pelk::IntfId intfId ) { ports_[intfId].isAsking = true; }

 private:
   using Name = std::pair< U8, U64 >; // type and key
   using Bytes = std::vector< U8 >;   // of a value
   struct Port {
      bool isFresh = false;  // its packet access has come or gone since the last pass
      bool isAsking = false; // it is to send a LeaveAll at the end of the pass
      std::map< Name, Bytes > declared;
      std::map< Name, Happening > told; // the latest join of each that has had no leave
   };
   class PamWatch : public Interface::EthDevPamCollection::Reactor {
    public:
      explicit PamWatch( DeclaringLib & lib ) : lib_( lib ) {}
      void onIntfPam( Pelk::IntfId const & intfId ) override { lib_.handlePam( intfId ); }

    private:
      DeclaringLib & lib_;
   };

   void handlePam( Pelk::IntfId intfId );
   void handlePass();
   void followLink( Pelk::IntfId intfId );
   void tellSilentLeaves();
   bool hasPam( Pelk::IntfId intfId ) const;
   bool isQuietObserver( Pelk::IntfId intfId, Name const & name ) const;
   void withdraw( Pelk::IntfId intfId, Name const & name );
   // The value stands in its Tx field already.
   void send( Pelk::IntfId intfId, U8 attributeType, Mrp::MrpThreePackedEvent event );

   Tell tell_;
   std::vector< Pelk::IntfId > interfaces_;
   std::map< Pelk::IntfId, Port > ports_; // of all interfaces
   Keys unsettled_;
   bool isAllUnsettled_ = false;
   Korv::CallbackTimer pass_{ Korv::activityManager().clock(), [this] { handlePass(); } };
   PamWatch pamWatch_{ *this };
   LinkWatch linkWatch_{ [this] { settleAllLater(); } };
};

template < class Kind >
void DeclaringLib::declare( Pelk::IntfId intfId, typename Kind::Value const & value, bool isNew ) {
   if ( !hasPam( intfId ) ) {
      return;
   }
   Bytes bytes = bytesOf( value );
   Name const name( Kind::type, Kind::key( value ) );
   Bytes & declared = ports_[intfId].declared[name];
   if ( declared == bytes && !isNew ) {
      return;
   }
   isNew = isNew || !declared.empty() || isQuietObserver( intfId, name );
   declared = std::move( bytes );
   ( this->*Kind::txIs )( value );
   send( intfId, Kind::type, isNew ? Mrp::newEvent : Mrp::joinInEvent );
}

} // namespace Command
