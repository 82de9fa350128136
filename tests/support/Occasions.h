// What an application can be told of beside its indications, and so another place from which it may
// call back into the library: frames that leave, frames that open and end, attributes that come and
// go, and the LeaveAll times.
#pragma once

#include "tests/support/Participant.h"

#include <deque>

namespace TestSupport {

enum class Occasion { frameLeaves, openFrame, leaveAllTime, attribute };

class Occasions {
 public:
   // The type and key are 0 for all but attributes.
   using Told = std::function< void( Occasion, std::string const & interface, U8 type, U64 key ) >;

   // The participant outlives it.
   Occasions( Participant & participant, std::vector< std::string > const & interfaces, Told told )
      : participant_( participant ), told_( std::move( told ) ) {
      participant.onSent = [this]( SentFrame const & frame ) {
         told_( Occasion::frameLeaves, frame.interface, 0, 0 );
      };
      openFrames_.notifierIs( &participant.lib() );
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
   class Attributes : public Mrp::MrpIntfTypeApplicant::Reactor {
    public:
      Attributes( Told const & told, std::string interface )
         : told_( told ), interface_( std::move( interface ) ) {}
      void onMrpAttribute( U64 key ) override {
         told_( Occasion::attribute, interface_, notifier()->attributeType(), key );
      }

    private:
      Told const & told_;
      std::string interface_;
   };

   Participant & participant_;
   Told const told_;
   OpenFrames openFrames_{ told_ };
   LeaveAllTimes leaveAllTimes_{ told_ };
   std::deque< Attributes > attributes_;
};

} // namespace TestSupport
