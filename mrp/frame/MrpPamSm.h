// The participant's interfaces: one MrpIntfPamSm for each Pelk::Pam in the collection.
//
// Owned by MrpSm from doInitializePamMan to the end of the participant, in standby too.
#pragma once

#include "mrp/frame/MrpIntfPamSm.h"
#include "mrp/platform/interface/EthDevPamCollection.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"

namespace Mrp {

class MrpPamSm : public Korv::PtrInterface {
 public:
   using IntfPamSms = Korv::HashMap< Pelk::IntfId, Korv::Ptr< MrpIntfPamSm > >;

   MrpPamSm( Korv::Ptr< Interface::EthDevPamCollection > pamCollection, bool standbyMode,
             MrpSm * mrpSm );
   ~MrpPamSm() override;

   MrpSm * mrpSm() const { return mrpSm_; }
   Korv::Ptr< Interface::EthDevPamCollection > const & pamCollection() const {
      return pamCollection_;
   }
   void handleInitialized();
   bool initialized() const { return initialized_; }

   IntfPamSms const & mrpIntfPamSm() const { return mrpIntfPamSm_; }
   MrpIntfPamSm * mrpIntfPamSm( Pelk::IntfId intfId ) const;
   MrpIntfPamSm * mrpIntfPamSmIs( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam,
                                  bool standbyMode );
   MrpIntfPamSm * newMrpIntfPamSm( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pam > pam,
                                   bool standbyMode ) {
      return mrpIntfPamSmIs( intfId, std::move( pam ), standbyMode );
   }
   void mrpIntfPamSmDel( Pelk::IntfId intfId ) { mrpIntfPamSm_.erase( intfId ); }
   void mrpIntfPamSmDelAll() { Korv::membersDelAll( mrpIntfPamSm_ ); }

   bool standbyMode() const { return standbyMode_; }
   void standbyModeIs( bool v ) { standbyMode_ = v; }
   // Hands the mode on to each interface.
   void handleStandbyMode();

   // An entry of the collection has come or gone. One that is replaced while its machine is there
   // is a fault of the platform: it must go and come.
   void handlePam( Pelk::IntfId intfId );

   // Sends the received frame out of every interface but its own, whatever their state, with the
   // address of the port it came in on. The packet is the caller's private copy.
   void floodMsrpdu( Pelk::IntfId intfId, Korv::Ptr< Pelk::Pkt > const & pkt );

   // For the agent: a LeaveAll of all types on one interface, now.
   void transmitAllLeaveAll( Pelk::IntfId intfId );

 private:
   class KorvPamCollection : public Interface::EthDevPamCollection::Reactor {
    public:
      explicit KorvPamCollection( MrpPamSm & sm ) : sm_( sm ) {}
      void onIntfPam( Pelk::IntfId const & intfId ) override { sm_.handlePam( intfId ); }

    private:
      MrpPamSm & sm_;
   };

   Korv::Ptr< Interface::EthDevPamCollection > pamCollection_;
   bool standbyMode_;
   MrpSm * mrpSm_;           // the owner
   IntfPamSms mrpIntfPamSm_; // behind mrpSm_, which its machines need as they end
   // Whose machine is opening or closing. Whoever is told of the LeaveAll that begins or ends with
   // it may open or close the interface anew: that is seen to when the machine is done.
   Korv::HashMap< Pelk::IntfId, bool > changing_;
   bool initialized_ = false;
   KorvPamCollection korvPamCollection_{ *this };
};

} // namespace Mrp
