// The ten counters of a participant, from the end of standby. A malformed frame can count more
// than once: each level of the parser counts its own failure.
#pragma once

#include "mrp/platform/korv/Attributes.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/vocabulary/Mrp.h"

namespace Mrp {

class MrpCounters : public Korv::NamedEntity {
 public:
   class Reactor : public Korv::ReactorOn< MrpCounters > {
    public:
      virtual void onNumOfIncorrectPduVersion() {}
      virtual void onNumOfUnknownAttributeType() {}
      virtual void onNumOfMalformedPkts() {}
      virtual void onNumOfUnknownApplication() {}
      virtual void onNumOfIncorrectDmac() {}
      virtual void onNumOfIncorrectEtype() {}
      virtual void onNumOfPktsProcessed() {}
      virtual void onNumOfPktsTransmitted() {}
      virtual void onNumOfJoinIndications() {}
      virtual void onNumOfLeaveIndications() {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h

   explicit MrpCounters( Korv::Name name ) : NamedEntity( std::move( name ) ) {}

   // MRPDUs with a ProtocolVersion other than 0.
   U64 numOfIncorrectPduVersion() const { return pduVersion_; }
   void numOfIncorrectPduVersionIs( U64 v ) {
      set( pduVersion_, v, &Reactor::onNumOfIncorrectPduVersion );
   }
   void numOfIncorrectPduVersionInc( U64 n ) { numOfIncorrectPduVersionIs( pduVersion_ + n ); }

   // Vectors of a type that the application does not have.
   U64 numOfUnknownAttributeType() const { return attributeType_; }
   void numOfUnknownAttributeTypeIs( U64 v ) {
      set( attributeType_, v, &Reactor::onNumOfUnknownAttributeType );
   }
   void numOfUnknownAttributeTypeInc( U64 n ) { numOfUnknownAttributeTypeIs( attributeType_ + n ); }

   // Failures of the parser.
   U64 numOfMalformedPkts() const { return malformed_; }
   void numOfMalformedPktsIs( U64 v ) { set( malformed_, v, &Reactor::onNumOfMalformedPkts ); }
   void numOfMalformedPktsInc( U64 n ) { numOfMalformedPktsIs( malformed_ + n ); }

   // Vectors at a participant that is neither MSRP nor MVRP.
   U64 numOfUnknownApplication() const { return application_; }
   void numOfUnknownApplicationIs( U64 v ) {
      set( application_, v, &Reactor::onNumOfUnknownApplication );
   }
   void numOfUnknownApplicationInc( U64 n ) { numOfUnknownApplicationIs( application_ + n ); }

   // Frames to another address, and frames of another type.
   U64 numOfIncorrectDmac() const { return dmac_; }
   void numOfIncorrectDmacIs( U64 v ) { set( dmac_, v, &Reactor::onNumOfIncorrectDmac ); }
   void numOfIncorrectDmacInc( U64 n ) { numOfIncorrectDmacIs( dmac_ + n ); }
   U64 numOfIncorrectEtype() const { return etype_; }
   void numOfIncorrectEtypeIs( U64 v ) { set( etype_, v, &Reactor::onNumOfIncorrectEtype ); }
   void numOfIncorrectEtypeInc( U64 n ) { numOfIncorrectEtypeIs( etype_ + n ); }

   // Frames taken in, whatever became of them, and frames handed to an interface.
   U64 numOfPktsProcessed() const { return processed_; }
   void numOfPktsProcessedIs( U64 v ) { set( processed_, v, &Reactor::onNumOfPktsProcessed ); }
   void numOfPktsProcessedInc( U64 n ) { numOfPktsProcessedIs( processed_ + n ); }
   U64 numOfPktsTransmitted() const { return transmitted_; }
   void numOfPktsTransmittedIs( U64 v ) {
      set( transmitted_, v, &Reactor::onNumOfPktsTransmitted );
   }
   void numOfPktsTransmittedInc( U64 n ) { numOfPktsTransmittedIs( transmitted_ + n ); }

   // Join indications and confirmed joins; leave indications.
   U64 numOfJoinIndications() const { return joins_; }
   void numOfJoinIndicationsIs( U64 v ) { set( joins_, v, &Reactor::onNumOfJoinIndications ); }
   void numOfJoinIndicationsInc( U64 n ) { numOfJoinIndicationsIs( joins_ + n ); }
   U64 numOfLeaveIndications() const { return leaves_; }
   void numOfLeaveIndicationsIs( U64 v ) { set( leaves_, v, &Reactor::onNumOfLeaveIndications ); }
   void numOfLeaveIndicationsInc( U64 n ) { numOfLeaveIndicationsIs( leaves_ + n ); }

   static constexpr auto attributes() {
      using C = MrpCounters;
      return Korv::attributeTable(
         "Mrp::MrpCounters", //
         Korv::scalar( 258, "numOfIncorrectPduVersion", &C::numOfIncorrectPduVersion,
                       &C::numOfIncorrectPduVersionIs ),
         Korv::scalar( 259, "numOfUnknownAttributeType", &C::numOfUnknownAttributeType,
                       &C::numOfUnknownAttributeTypeIs ),
         Korv::scalar( 260, "numOfMalformedPkts", &C::numOfMalformedPkts,
                       &C::numOfMalformedPktsIs ),
         Korv::scalar( 261, "numOfUnknownApplication", &C::numOfUnknownApplication,
                       &C::numOfUnknownApplicationIs ),
         Korv::scalar( 262, "numOfIncorrectDmac", &C::numOfIncorrectDmac,
                       &C::numOfIncorrectDmacIs ),
         Korv::scalar( 263, "numOfIncorrectEtype", &C::numOfIncorrectEtype,
                       &C::numOfIncorrectEtypeIs ),
         Korv::scalar( 264, "numOfPktsProcessed", &C::numOfPktsProcessed,
                       &C::numOfPktsProcessedIs ),
         Korv::scalar( 265, "numOfPktsTransmitted", &C::numOfPktsTransmitted,
                       &C::numOfPktsTransmittedIs ),
         Korv::scalar( 266, "numOfJoinIndications", &C::numOfJoinIndications,
                       &C::numOfJoinIndicationsIs ),
         Korv::scalar( 267, "numOfLeaveIndications", &C::numOfLeaveIndications,
                       &C::numOfLeaveIndicationsIs ) );
   }

 private:
   U64 pduVersion_ = 0;
   U64 attributeType_ = 0;
   U64 malformed_ = 0;
   U64 application_ = 0;
   U64 dmac_ = 0;
   U64 etype_ = 0;
   U64 processed_ = 0;
   U64 transmitted_ = 0;
   U64 joins_ = 0;
   U64 leaves_ = 0;
};

} // namespace Mrp
