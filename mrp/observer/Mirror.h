// A participant's published entities as a stream brings them: the observer's side, short of the
// transport.
//
//    MrpObserver::Mirror mirror;
//    mirror.streamBegins();           when a connection stands
//    mirror.handleBytes( bytes );     what it delivers, in pieces of any size
//    mirror.status()                  and config(), counters(), parseContext(): entities to watch
//
// The entities live as long as the mirror, from stream to stream: a new stream brings them up to
// date and deletes what it does not bring, so that a watcher hears of what has changed and of
// nothing else. Between streams they stand as they were last.
//
// Watchers read. Whoever changes what is mirrored makes it differ from the original, and deletes
// what a message is about to be applied to. Nor does a watcher begin or end a stream, or end the
// mirror, while bytes of one are applied; that is asserted.
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/platform/attrlog/Input.h"
#include "mrp/receive/MrpCounters.h"
#include "mrp/receive/MrpParseContext.h"
#include "mrp/topology/MrpConfig.h"

#include <memory>
#include <span>

namespace MrpObserver {

using Korv::NboAttrLog::StreamError;

class Mirror {
 public:
   // How much streams may make it hold: Input.h.
   explicit Mirror( std::size_t maxBytes = Korv::NboAttrLog::Input::usualMaxBytes );
   Mirror( Mirror const & ) = delete;
   Mirror & operator=( Mirror const & ) = delete;
   ~Mirror();

   Mrp::MrpStatus & status() const { return *status_; }
   Mrp::MrpConfig & config() const { return *config_; }
   Mrp::MrpCounters & counters() const { return *counters_; }
   Mrp::MrpParseContext & parseContext() const { return *parseContext_; }

   void streamBegins();
   void streamEnds();
   bool hasStream() const { return input_ != nullptr; }
   // Throws a StreamError when the stream is broken or hostile. Whatever is thrown, by a watcher
   // too, has ended the stream. Not called from a watcher.
   void handleBytes( std::span< Korv::U8 const > bytes );
   // The stream at hand has brought all that it has told of, which is then a copy of what there
   // was; it may be about to tell of more. Looks at every entity.
   bool isBrought() const { return input_ && input_->isBrought(); }
   // How many the stream at hand has brought.
   Korv::U64 messages() const { return input_ ? input_->messages() : 0; }

 private:
   void assertOutsideOfWatchers() const;

   Korv::Ptr< Mrp::MrpStatus > status_;
   Korv::Ptr< Mrp::MrpConfig > config_;
   Korv::Ptr< Mrp::MrpCounters > counters_;
   Korv::Ptr< Mrp::MrpParseContext > parseContext_;
   Korv::NboAttrLog::NameGuard names_;
   std::size_t maxBytes_;
   std::unique_ptr< Korv::NboAttrLog::Input > input_;
   bool applying_ = false; // bytes of the stream, whose watchers are called
};

} // namespace MrpObserver
