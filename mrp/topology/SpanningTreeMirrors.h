// Reactors that mirror the published status of the spanning tree, level by level, so that a change
// of a port's role reaches MrpSm::handleRole with the names of the port, of its tree instance and
// of its protocol instance.
//
//    KorvStpStatus         watches Stp::Status; MrpSm holds it, and the next level itself
//    KorvStpiStatus        Stp::StpiStatus; in `stpiStatus` of MrpSm
//    KorvMstiStatus        Stp::MstiStatus; in `mstiStatus` of the former
//    KorvMstiPortStatus    Stp::MstiPortStatus; in `mstiPortStatus` of the former
//
// A mirror shares its record, points back to its parent and is owned by it.
//
//  1. Between notifications each level has one mirror for each record, on the object that stands
//     under the name now, and no others.
//  2. handleRole runs once for each port's mirror that has appeared and once for each that has
//     gone, whatever level it came or went with. At the end of the participant mirrors go silently.
#pragma once

#include "mrp/frame/MrpSm.h"

namespace Mrp {

template < class Record_, class Parent_ >
class SpanningTreeMirror : public Korv::PtrInterface, public Record_::Reactor {
 public:
   using Record = Record_;
   using Parent = Parent_;

   SpanningTreeMirror( Korv::Ptr< Record const > record, Parent & parent )
      : record_( std::move( record ) ), parent_( parent ) {
      this->notifierIs( record_ );
   }

   Record const & record() const { return *record_; }
   Parent & parent() const { return parent_; }

 private:
   Korv::Ptr< Record const > record_;
   Parent & parent_;
};

class MrpSm::KorvStpStatus : public SpanningTreeMirror< Stp::Status, MrpSm > {
 public:
   using SpanningTreeMirror::SpanningTreeMirror;
   void onStpiStatus( Korv::Name const & name ) override;
   // Its parent has it; what its record holds already follows.
   void handleAppeared();
};

class MrpSm::KorvStpiStatus : public SpanningTreeMirror< Stp::StpiStatus, MrpSm > {
 public:
   using SpanningTreeMirror::SpanningTreeMirror;
   SpanningTreeMirrors< KorvMstiStatus > const & mstiStatus() const { return mstiStatus_; }
   void onMstiStatus( Korv::Name const & name ) override;
   void handleAppeared();
   // Its parent has it no more; what it holds goes with it.
   void handleGone();

 private:
   SpanningTreeMirrors< KorvMstiStatus > mstiStatus_;
};

class MrpSm::KorvMstiStatus : public SpanningTreeMirror< Stp::MstiStatus, KorvStpiStatus > {
 public:
   using SpanningTreeMirror::SpanningTreeMirror;
   SpanningTreeMirrors< KorvMstiPortStatus > const & mstiPortStatus() const {
      return mstiPortStatus_;
   }
   void onMstiPortStatus( Korv::Name const & name ) override;
   void handleAppeared();
   void handleGone();

 private:
   SpanningTreeMirrors< KorvMstiPortStatus > mstiPortStatus_;
};

class MrpSm::KorvMstiPortStatus : public SpanningTreeMirror< Stp::MstiPortStatus, KorvMstiStatus > {
 public:
   using SpanningTreeMirror::SpanningTreeMirror;
   void onRole() override;
   void handleAppeared() { onRole(); }
   void handleGone() { onRole(); }
};

} // namespace Mrp
