// What the participant says of an attribute on the wire (IEEE 802.1Q, the Applicant of MAD).
//
// One for the whole participant, owned by MrpSm. The state of each attribute stands in its
// MrpAttrDatabase; the machine works on the attribute that the parse context names.
//
// There is no transmit opportunity here: a transition that has something to say puts it into the
// interface's open frame at once, and the frame leaves later.
#pragma once

#include "mrp/platform/korv/Ptr.h"
#include "mrp/topology/MrpConfig.h"
#include "mrp/vocabulary/Mrp.h"

#include <array>

namespace Mrp {

class MrpSm;
enum class ApplicantSends : U8;

class MrpApplicantSm : public Korv::PtrInterface {
 public:
   MrpApplicantSm( MrpSm * mrpSm, Korv::Ptr< MrpConfig const > mrpConfig );

   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< MrpConfig const > const & mrpConfig() const { return mrpConfig_; }
   void handleInitialized();
   bool initialized() const { return initialized_; }

   // To post an event: name the attribute in the parse context, store the event, call the handler.
   MrpApplicantEvent applicantEvent() const { return applicantEvent_; }
   void applicantEventIs( MrpApplicantEvent v ) { applicantEvent_ = v; }
   // Makes the attribute if it is missing, whatever the event; never deletes one.
   void handleApplicantEvent();

   // One handler a state, all over the one table.
   void handleVeryAnxiousObserver( MrpApplicantEvent event );
   void handleVeryAnxiousPassive( MrpApplicantEvent event );
   void handleVeryAnxiousNew( MrpApplicantEvent event );
   void handleAnxiousNew( MrpApplicantEvent event );
   void handleAnxiousActive( MrpApplicantEvent event );
   void handleQuietActive( MrpApplicantEvent event );
   void handleLeavingActive( MrpApplicantEvent event );
   void handleAnxiousObserver( MrpApplicantEvent event );
   void handleQuietObserver( MrpApplicantEvent event );
   void handleAnxiousPassive( MrpApplicantEvent event );
   void handleQuietPassive( MrpApplicantEvent event );
   void handleLeavingObserver( MrpApplicantEvent event );

   void mrpSetApplicantState( MrpApplicantState state );
   // The event of a MrpThreePackedEvent number from the wire.
   MrpApplicantEvent mrpMapRxApplicantEvent( U8 rxEvent ) const {
      static constexpr std::array< MrpApplicantEvent, 6 > events{ rxNew,    rxJoinIn, rxIn,
                                                                  rxJoinMt, rxMt,     rxLv };
      return rxEvent < events.size() ? events[rxEvent] : invalidApplicantEvent;
   }

   // The four senders. Join and registered state choose their event by the registrar's state, and
   // send nothing for an attribute that does not exist.
   void mrpApplicantSendNew( bool secondPktContext );
   void mrpApplicantSendJoin( bool secondPktContext );
   void mrpApplicantSendRegisteredState( bool secondPktContext );
   void mrpApplicantSendLeave();

 private:
   void transition( MrpApplicantState state, MrpApplicantEvent event );
   void doSend( ApplicantSends sends );
   void send( MrpThreePackedEvent attributeEvent, bool secondPktContext );

   MrpSm * mrpSm_; // the owner
   Korv::Ptr< MrpConfig const > mrpConfig_;
   MrpApplicantEvent applicantEvent_ = invalidApplicantEvent;
   bool initialized_ = false;
};

} // namespace Mrp
