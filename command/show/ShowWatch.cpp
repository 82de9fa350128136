#include "command/show/ShowWatch.h"

#include "mrp/platform/korv/TimeOfDay.h"
#include "mrp/platform/linux/SignalWatch.h"

#include "command/StandardOutput.h"
#include "command/show/ShowJson.h"
#include "command/show/ShowScreen.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <unistd.h>

namespace Command {

namespace {

constexpr Korv::Seconds period = 0.1;

using Clock = std::chrono::steady_clock;

// "12:00:00", out of "2026-03-01 12:00:00.123".
std::string timeOfDay() { return Korv::timeOfDayText( Korv::timeOfDay() ).substr( 11, 8 ); }

class Watch {
 public:
   Watch( ShowOptions const & options, Linux::RealActivity & activity,
          std::list< ShowSource > & sources, std::ostream & out )
      : options_( options ), activity_( activity ), sources_( sources ), out_( out ),
        signals_( activity, { SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH, SIGTSTP },
                  [this]( int signal ) { handleSignal( signal ); } ) {
      if ( !options.json && terminalSize( out ) ) {
         screen_.emplace( activity, out, [this]( ShowScreen::Key key ) { handleKey( key ); } );
      }
      watchReader();
   }

   void run() {
      while ( !isStopping_ && out_ ) {
         Clock::time_point const begin = Clock::now();
         bool const isDue = hasChanged();
         if ( screen_ ) {
            drawScreen( isDue );
         } else if ( isDue ) {
            print();
         }
         // A picture of very many attributes takes its time; most of it is left to the stream.
         std::chrono::duration< double > const spent = Clock::now() - begin;
         activity_.runFor( std::max( period, 4 * spent.count() ) );
      }
   }

 private:
   // A pipe whose reader has gone says so at once, and not only at the next change.
   void watchReader() {
      if ( isPiped( out_ ) ) {
         reader_.emplace( activity_, STDOUT_FILENO, 0, [this]( Korv::U32 ) {
            reader_.reset();
            doStop();
         } );
      }
   }

   void handleSignal( int signal ) {
      if ( signal == SIGTSTP ) {
         if ( screen_ ) {
            screen_->suspend();
         } else {
            ::raise( SIGSTOP );
         }
      } else if ( signal != SIGWINCH ) {
         return doStop();
      }
      isToBeDrawn_ = true;
   }
   void handleKey( ShowScreen::Key key ) {
      using Key = ShowScreen::Key;
      if ( key == Key::quit ) {
         return doStop();
      }
      auto const page = static_cast< long >( screen_->size().rows ) - 3;
      frame_.scroll( key == Key::up       ? -1
                     : key == Key::down   ? 1
                     : key == Key::pageUp ? -page
                                          : page );
      isToBeDrawn_ = true;
      activity_.doStop(); // a round, for the picture
   }
   void doStop() {
      isStopping_ = true;
      activity_.doStop();
   }

   bool hasChanged() {
      bool has = std::exchange( isToBeDrawn_, false );
      for ( ShowSource & source : sources_ ) {
         has = source.hasChanged() || has;
      }
      return has;
   }

   std::vector< ShowStream > streams() {
      std::vector< ShowStream > all;
      for ( ShowSource & source : sources_ ) {
         all.push_back( source.stream( options_.filter ) );
      }
      return all;
   }

   void drawScreen( bool isDue ) {
      std::string const time = timeOfDay();
      if ( !isDue && time == drawnAt_ && !frame_.isStale( Korv::now() ) ) {
         return;
      }
      drawnAt_ = time;
      ScreenSize const size = screen_->size();
      lines_.clear();
      std::size_t connected = 0;
      auto const all = streams();
      for ( ShowStream const & stream : all ) {
         connected += stream.connected ? 1 : 0;
         if ( !lines_.empty() ) {
            lines_.push_back( {} );
         }
         std::ranges::move( showLines( stream, size.columns ), std::back_inserter( lines_ ) );
      }
      std::string head = "mrp show  " + time + "  ";
      if ( all.size() == 1 ) {
         head += all.front().address + "  " + ( connected ? "connected" : "not connected" );
      } else {
         head += std::to_string( connected ) + " of " + std::to_string( all.size() ) + " connected";
      }
      screen_->draw( frame_.picture( head + "  (arrows, q quits)", lines_, size, Korv::now() ) );
   }

   // What differs from the last one; much changes that is not shown.
   void print() {
      std::ostringstream text;
      auto const all = streams();
      if ( options_.json ) {
         writeShowJson( all, JsonForm::line, text );
      } else {
         writeShowText( all, ScreenSize().columns, text );
      }
      if ( text.str() != printed_ ) {
         out_ << ( printed_.empty() || options_.json ? "" : "\n" ) << text.str() << std::flush;
         printed_ = text.str();
      }
   }

   ShowOptions const & options_;
   Linux::RealActivity & activity_;
   std::list< ShowSource > & sources_;
   std::ostream & out_;
   Linux::SignalWatch signals_;
   std::optional< ShowScreen > screen_;
   std::optional< Linux::DescriptorWatch > reader_;
   ShowFrame frame_;
   ShowLines lines_;
   std::string drawnAt_;
   std::string printed_;
   bool isToBeDrawn_ = false;
   bool isStopping_ = false;
};

} // namespace

int watch( ShowOptions const & options, Linux::RealActivity & activity,
           std::list< ShowSource > & sources, std::ostream & out ) {
   BrokenPipeIgnored const brokenPipeIgnored;
   Watch( options, activity, sources, out ).run();
   if ( !out && isPiped( out ) ) {
      throw ReaderGone();
   }
   return 0;
}

} // namespace Command
