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

   // How often the Tx field of a domain was written, as an override of its mutator sees it.
   unsigned domainTxWrites = 0;

   // The Rx field of the kind, as the database would keep it.
   Bytes rxValue( U8 attributeType ) const;
   // Loads the Tx field of the kind with what the database would keep.
   void txValueIs( U8 attributeType, Bytes const & value );

   bool mrpJoinIndication( Mrp::MrpParameters const & parameters ) override {
      return handled( true, parameters );
   }
   void mrpLeaveIndication( Mrp::MrpParameters const & parameters ) override {
      handled( false, parameters );
   }
   void msrpDomainVectorTxIs( Mrp::MsrpDomainAttribute const & v ) override {
      ++domainTxWrites;
      MrpLib::msrpDomainVectorTxIs( v );
   }

 private:
   // True if the application discards it.
   bool handled( bool join, Mrp::MrpParameters const & parameters );
};

} // namespace TestSupport
