// One participant that `mrp show` looks at: the stream, its mirror, and whether the mirror can be
// trusted yet.
#pragma once

#include "mrp/observer/Connection.h"

#include "command/show/ShowView.h"

#include <optional>
#include <string>

namespace Command {

// No message says that all has been told. So a copy is whole once all that the stream has made
// known has been brought and nothing has come for a moment, or for a longer while with a
// participant that does not come to rest.
//
// Made after the activity, and looked at between its rounds.
class ShowSource {
 public:
   // For how long nothing has to come, and for how long that is waited for.
   static constexpr Korv::Seconds moment = 0.05;
   static constexpr Korv::Seconds longestUnrest = 1;
   // While the copy is not whole: how long to wait for its next message, and for all of it.
   static constexpr Korv::Seconds patience = 5;
   static constexpr Korv::Seconds longestCopy = 60;

   ShowSource( Linux::RealActivity & activity, Linux::StreamAddress const & address );

   // To be called often. True while the mirror is a whole copy of the stream at hand.
   bool isWhole();
   // Why there will be none without another attempt; empty while there is hope.
   std::string failure() const;

   // What the mirror was when it was whole last, and what is known of the connection. The filter
   // is the same each time.
   ShowStream const & stream( ShowFilter const & filter );
   // Whether stream() would be another than it was last.
   bool hasChanged();
   MrpObserver::Mirror const & mirror() const { return mirror_; }
   std::string const & address() const { return stream_.address; }

 private:
   struct Seen {
      Korv::U64 streams = 0;
      Korv::U64 messages = 0;
      bool isConnected = false;
      std::string problem;
      bool operator==( Seen const & ) const = default;
   };
   Seen seen() const;

   MrpObserver::Mirror mirror_;
   MrpObserver::Connection connection_;
   ShowStream stream_;
   Seen shown_;
   // Of the stream at hand.
   Korv::U64 number_ = 0;
   Korv::U64 messages_ = 0;
   Korv::Seconds begin_ = Korv::now();
   Korv::Seconds lastMessage_ = begin_;
   std::optional< Korv::Seconds > brought_;
   bool hasBeenWhole_ = false;
};

} // namespace Command
