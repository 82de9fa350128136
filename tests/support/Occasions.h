// What an application can be told of beside its indications, and so another place from which it may
// call back into the library: frames that leave, frames that open and end, attributes that come and
// go, their states, the LeaveAll times, and what is counted.
#pragma once

#include "tests/support/Participant.h"

#include <deque>

namespace TestSupport {

enum class Occasion { frameLeaves, openFrame, leaveAllTime, attribute, state, count };

class Occasions {
 public:
   // The type and key are 0 for all but attributes and their states, the interface empty for
   // counts.
   using Told = std::function< void( Occasion, std::string const & interface, U8 type, U64 key ) >;

   // The participant outlives it.
   Occasions( Participant & participant, std::vector< std::string > const & interfaces, Told told )
      : participant_( participant ), told_( std::move( told ) ) {
      participant.onSent = [this]( SentFrame const & frame ) {
         told_( Occasion::frameLeaves, frame.interface, 0, 0 );
      };
      openFrames_.notifierIs( &participant.lib() );
      counts_.notifierIs( participant.sm().mrpCounters() );
      auto & published = *participant.status().applicationIs( participant.lib().application() );
      leaveAllTimes_.notifierIs( &published );
      for ( std::string const & name : interfaces ) {
         auto & levels = *published.attrDatabaseIs( Pelk::IntfId( name ) );
         for ( U8 type = 1; type <= participant.sm().maxAttrTypes(); ++type ) {
            attributes_.emplace_back( told_, name )
               .notifierIs( levels.intfTypeApplicantIs( type ) );
         }
      }
   }
   ~Occasions() { participant_.onSent = {}; }
   Occasions( Occasions const & ) = delete;
   Occasions & operator=( Occasions const & ) = delete;

 private:
   class OpenFrames : public Mrp::MrpLib::Reactor {
    public:
      explicit OpenFrames( Told const & told ) : told_( told ) {}
      void onMrpTxPacketContext( Pelk::IntfId intfId ) override {
         told_( Occasion::openFrame, intfId.stringValue(), 0, 0 );
      }
      void onMrpTxSecondPacketContext( Pelk::IntfId intfId ) override {
         onMrpTxPacketContext( intfId );
      }

    private:
      Told const & told_;
   };
   class LeaveAllTimes : public Mrp::MrpApplicationDatabase::Reactor {
    public:
      explicit LeaveAllTimes( Told const & told ) : told_( told ) {}
      void onLeaveAllTime( Mrp::MrpLeaveAllKey key ) override {
         told_( Occasion::leaveAllTime, key.intfId().stringValue(), 0, 0 );
      }

    private:
      Told const & told_;
   };
   class Counts : public Mrp::MrpCounters::Reactor {
    public:
      explicit Counts( Told const & told ) : told_( told ) {}
      void onNumOfPktsTransmitted() override { told_( Occasion::count, "", 0, 0 ); }
      void onNumOfJoinIndications() override { told_( Occasion::count, "", 0, 0 ); }
      void onNumOfLeaveIndications() override { told_( Occasion::count, "", 0, 0 ); }

    private:
      Told const & told_;
   };
   class States : public Mrp::MrpAttrDatabase::Reactor {
    public:
      explicit States( std::function< void( U64 key ) > told ) : told_( std::move( told ) ) {}
      void onApplicantState() override { told_( notifier()->mrpAttributeKey() ); }
      void onRegistrarState() override { told_( notifier()->mrpAttributeKey() ); }

    private:
      std::function< void( U64 key ) > told_;
   };
   class Attributes : public Mrp::MrpIntfTypeApplicant::Reactor {
    public:
      Attributes( Told const & told, std::string interface )
         : told_( told ), interface_( std::move( interface ) ) {}
      void onMrpAttribute( U64 key ) override {
         if ( auto * const made = notifier()->mrpAttribute( key ) ) {
            auto const type = notifier()->attributeType();
            states_
               .emplace_back( [this, type]( U64 changed ) {
                  told_( Occasion::state, interface_, type, changed );
               } )
               .notifierIs( made );
         }
         told_( Occasion::attribute, interface_, notifier()->attributeType(), key );
      }

    private:
      Told const & told_;
      std::string interface_;
      std::deque< States > states_; // of all that there have been
   };

   Participant & participant_;
   Told const told_;
   OpenFrames openFrames_{ told_ };
   LeaveAllTimes leaveAllTimes_{ told_ };
   Counts counts_{ told_ };
   std::deque< Attributes > attributes_;
};

} // namespace TestSupport
