// MSRP on an end station: it talks and it listens.
//
// On every interface it declares
//    - the SR classes that it knows, as domains;
//    - a Talker Advertise for each stream that it talks;
//    - a Listener for each stream that it wants to hear, from the start: Ready where the stream's
//      talker is registered on that interface, else Asking Failed: where a Talker Failed is
//      registered, where both are, and where there is no talker yet. Each change of the talker
//      changes it.
#pragma once

#include "command/run/DeclaringLib.h"

namespace Command {

struct StreamPlan {
   std::vector< Mrp::MsrpTalkerAdvertiseAttribute > talkers; // in ascending order of streams
   std::set< U64 > listeners;                                // streams
   std::vector< Mrp::MsrpDomainAttribute > domains;          // in ascending order of classes
};

class StreamLib : public DeclaringLib {
 public:
   StreamLib( Tell tell, StreamPlan plan )
      : DeclaringLib( std::move( tell ) ), plan_( std::move( plan ) ) {}

 protected:
   void settle( Keys const & keys ) override;
   Keys allKeys() const override { return plan_.listeners; }

 private:
   Mrp::MsrpListenerEvent declarationType( Pelk::IntfId intfId, U64 streamId ) const;

   StreamPlan plan_;
};

} // namespace Command
