// An observer's end of the mirror stream without a transport: bytes are taken and dropped, so that
// what is measured is the engine's side and nothing else.
#pragma once

#include "mrp/platform/attrlog/Output.h"

#include "bench/Agent.h"

namespace Bench {

class Observer : public Korv::NboAttrLog::Output {
 public:
   // It has been told everything.
   explicit Observer( Agent const & agent ) : adapters_( agent.mounts().mount( *this ) ) {
      heardFromIs( chunk );
      takeAll();
   }
   // From now on it takes nothing more: its output fills, and then there are marks.
   void stall() { stalled_ = true; }
   // The loop's turn: what has waited for it goes on.
   void takeAll() {
      while ( !stalled_ && !idle() ) {
         take();
         doFlowOut();
      }
   }
   U64 taken() const { return taken_; }

 protected:
   // As a socket does, from within the engine's work.
   void handleBytes() override {
      if ( !stalled_ ) {
         take();
      }
   }

 private:
   static constexpr std::size_t chunk = 16 * 1024;
   void take() {
      taken_ += bytes();
      frontDel( bytes() );
   }

   bool stalled_ = false;
   U64 taken_ = 0;
   Mrp::AttrLogMounts::Adapters adapters_;
};

} // namespace Bench
