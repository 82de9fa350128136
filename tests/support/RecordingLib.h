// The application of a test: it writes down what it is told, and refuses what it is told to.
#pragma once

#include "mrp/frame/MrpLib.h"
#include "mrp/platform/korv/Types.h"

#include "tests/support/Values.h"

#include <functional>

namespace TestSupport {

// One join or leave indication, with the value that stood in the Rx field of its kind.
struct Indication {
   bool join = false;
   double time = 0;
   std::string interface;
   U8 type = 0;
   U8 event = 0; // the event of the wire
   U64 key = 0;  // of the parse context
   Bytes value;  // as the database would keep it

   // "join vlan 10 JoinIn on Ethernet1"; a leave has no event that means anything.
   std::string text( Protocol protocol ) const;
};

class RecordingLib : public Mrp::MrpLib {
 public:
   std::vector< Indication > indications;

   // Asked for each join, after it was written down; true discards the join.
   std::function< bool( Indication const & ) > refuse;
   // Called for each indication, last: the place from which a test calls back into the library.
   std::function< void( Indication const & ) > react;
   // Off, nothing is written down.
   bool recording = true;

   // The calls of the virtual mutators of the Rx and Tx fields, by name, in order.
   std::vector< std::string > mutatorCalls;
   bool countingMutators = false;

   // The Rx field of the kind, as the database would keep it.
   Bytes rxValue( U8 attributeType ) const;
   // Loads the Tx field of the kind with what the database would keep.
   void txValueIs( U8 attributeType, Bytes const & value );

   bool mrpJoinIndication( Mrp::MrpParameters const & parameters ) override;
   void mrpLeaveIndication( Mrp::MrpParameters const & parameters ) override;

   void msrpTalkerAdvertiseRxIs( Mrp::MsrpTalkerAdvertiseAttribute const & v ) override;
   void msrpTalkerFailedRxIs( Mrp::MsrpTalkerFailedAttribute const & v ) override;
   void msrpListenerVectorRxIs( Mrp::MsrpListenerAttribute const & v ) override;
   void msrpDomainVectorRxIs( Mrp::MsrpDomainAttribute const & v ) override;
   void mvrpVlanVectorRxIs( Mrp::MvrpVlanAttribute const & v ) override;
   void msrpTalkerAdvertiseTxIs( Mrp::MsrpTalkerAdvertiseAttribute const & v ) override;
   void msrpTalkerFailedTxIs( Mrp::MsrpTalkerFailedAttribute const & v ) override;
   void msrpListenerVectorTxIs( Mrp::MsrpListenerAttribute const & v ) override;
   void msrpDomainVectorTxIs( Mrp::MsrpDomainAttribute const & v ) override;
   void mvrpVlanVectorTxIs( Mrp::MvrpVlanAttribute const & v ) override;

 private:
   Indication taken( bool join, Mrp::MrpParameters const & parameters );
   void note( char const * mutator ) {
      if ( countingMutators ) {
         mutatorCalls.emplace_back( mutator );
      }
   }
};

} // namespace TestSupport
