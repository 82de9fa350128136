// A mirror stream without a transport: a participant's roots at one end, a mirror at the other, and
// bytes that move when they are told to.
#pragma once

#include "mrp/observability/AttrLogMounts.h"
#include "mrp/observer/Mirror.h"
#include "mrp/platform/attrlog/Output.h"

#include "tests/support/TreeText.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace TestSupport {

class MirrorLine {
 public:
   explicit MirrorLine( Mrp::AttrLogMounts const & mounts,
                        std::size_t bound = Korv::NboAttrLog::Output::usualBound )
      : mounts_( mounts ), bound_( bound ) {
      connect();
   }
   // Another connection; the mirror keeps what it has. What was under way is lost.
   void connect() {
      adapters_.clear();
      output_.emplace( bound_ );
      adapters_ = mounts_.mount( *output_ );
      mirror_.streamBegins();
   }
   // So many bytes arrive, and what waited for room goes on.
   void move( std::size_t count ) {
      auto const front = output_->front();
      auto const part = front.first( std::min( count, front.size() ) );
      std::vector< U8 > const bytes( part.begin(), part.end() );
      output_->frontDel( bytes.size() );
      mirror_.handleBytes( bytes );
      moved_ += bytes.size();
      output_->doFlowOut();
   }
   void moveAll() {
      while ( !output_->idle() ) {
         move( output_->bytes() );
      }
   }
   Korv::NboAttrLog::Output & output() { return *output_; }
   Korv::NboAttrLog::Adapter & root( std::size_t i ) { return *adapters_[i]; }
   MrpObserver::Mirror & mirror() { return mirror_; }
   std::size_t moved() const { return moved_; }

 private:
   Mrp::AttrLogMounts const & mounts_;
   std::size_t bound_;
   std::optional< Korv::NboAttrLog::Output > output_;
   Mrp::AttrLogMounts::Adapters adapters_;
   MrpObserver::Mirror mirror_;
   std::size_t moved_ = 0;
};

} // namespace TestSupport
