#include "command/show/ShowSource.h"

namespace Command {

ShowSource::ShowSource( Linux::RealActivity & activity, Linux::StreamAddress const & address )
   : connection_( activity, address, mirror_ ) {
   stream_.address = address.text();
}

ShowSource::Seen ShowSource::seen() const {
   return { connection_.streams(), mirror_.messages(), connection_.connected(),
            connection_.lastError() };
}

bool ShowSource::isWhole() {
   if ( number_ != connection_.streams() ) {
      number_ = connection_.streams();
      messages_ = 0;
      brought_.reset();
      hasBeenWhole_ = false;
   }
   if ( messages_ != mirror_.messages() ) {
      messages_ = mirror_.messages();
      lastMessage_ = Korv::now();
   }
   if ( !connection_.connected() || !mirror_.isBrought() ) {
      return false;
   }
   if ( !brought_ ) {
      brought_ = Korv::now();
   }
   hasBeenWhole_ = hasBeenWhole_ || Korv::now() - lastMessage_ >= moment ||
                   Korv::now() - *brought_ >= longestUnrest;
   return hasBeenWhole_;
}

std::string ShowSource::failure() const {
   if ( !connection_.connected() && !connection_.lastError().empty() ) {
      return connection_.lastError();
   }
   if ( Korv::now() - lastMessage_ >= patience && !mirror_.isBrought() ) {
      return connection_.connected() ? "it stopped in the middle" : "there is no answer";
   }
   if ( Korv::now() - begin_ >= longestCopy ) {
      return "it comes to no end";
   }
   return "";
}

// A copy under way is nothing to show.
bool ShowSource::hasChanged() {
   Seen const now = seen();
   return now != shown_ && ( !now.isConnected || isWhole() );
}

ShowStream const & ShowSource::stream( ShowFilter const & filter ) {
   if ( hasChanged() ) {
      shown_ = seen();
      if ( shown_.isConnected ) {
         stream_.views = showViews( mirror_, filter );
         stream_.isKnown = true;
      }
   }
   stream_.connected = connection_.connected();
   stream_.problem = connection_.lastError();
   return stream_;
}

} // namespace Command
