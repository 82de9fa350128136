#include "command/show/ShowScreen.h"

#include "command/StandardOutput.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Command {

namespace {
constexpr char const * enterAlternate = "\033[?1049h\033[?25l\033[H\033[J";
constexpr char const * leaveAlternate = "\033[0m\033[?25h\033[?1049l";

struct KeyText {
   std::string_view text;
   ShowScreen::Key key;
};
using Key = ShowScreen::Key;
constexpr std::array keyTexts{
   KeyText{ "q", Key::quit },         KeyText{ "Q", Key::quit },
   KeyText{ "\033[A", Key::up },      KeyText{ "\033OA", Key::up },
   KeyText{ "\033[B", Key::down },    KeyText{ "\033OB", Key::down },
   KeyText{ "k", Key::up },           KeyText{ "j", Key::down },
   KeyText{ "\033[5~", Key::pageUp }, KeyText{ "\033[6~", Key::pageDown },
   KeyText{ "b", Key::pageUp },       KeyText{ " ", Key::pageDown } };
} // namespace

std::optional< ScreenSize > terminalSize( std::ostream const & out ) {
   winsize window{};
   if ( !isStandardOutput( out ) || ::isatty( STDOUT_FILENO ) != 1 ||
        ::ioctl( STDOUT_FILENO, TIOCGWINSZ, &window ) != 0 ) {
      return std::nullopt;
   }
   bool const isKnown = window.ws_row > 0 && window.ws_col > 0;
   return isKnown ? ScreenSize{ window.ws_row, window.ws_col } : ScreenSize();
}

ShowScreen::ShowScreen( Linux::RealActivity & activity, std::ostream & out, OnKey onKey )
   : out_( out ), onKey_( std::move( onKey ) ),
     hasKeyboard_( ::tcgetattr( STDIN_FILENO, &before_ ) == 0 ) {
   if ( hasKeyboard_ ) {
      keys_.emplace( activity, STDIN_FILENO, Linux::DescriptorWatch::reading,
                     [this]( Korv::U32 ) { handleInput(); } );
   }
   enter();
}

ShowScreen::~ShowScreen() { leave(); }

void ShowScreen::enter() {
   if ( hasKeyboard_ ) {
      termios quiet = before_;
      quiet.c_lflag &= ~static_cast< tcflag_t >( ICANON | ECHO );
      ::tcsetattr( STDIN_FILENO, TCSANOW, &quiet );
   }
   draw( enterAlternate );
}

void ShowScreen::leave() {
   draw( leaveAlternate );
   if ( hasKeyboard_ ) {
      ::tcsetattr( STDIN_FILENO, TCSANOW, &before_ );
   }
}

void ShowScreen::draw( std::string const & picture ) { out_ << picture << std::flush; }

void ShowScreen::suspend() {
   leave();
   ::raise( SIGSTOP );
   enter();
}

// What is no key of ours means nothing, the rest of a sequence that a key sends included.
void ShowScreen::handleInput() {
   std::array< char, 64 > bytes;
   auto const got = ::read( STDIN_FILENO, bytes.data(), bytes.size() );
   if ( got <= 0 ) { // the terminal has gone
      keys_.reset();
      return onKey_( Key::quit );
   }
   for ( std::string_view rest( bytes.data(), static_cast< std::size_t >( got ) );
         !rest.empty(); ) {
      auto const known = std::ranges::find_if(
         keyTexts, [&]( KeyText const & one ) { return rest.starts_with( one.text ); } );
      bool const isKnown = known != keyTexts.end();
      rest.remove_prefix( isKnown ? known->text.size() : 1 );
      if ( isKnown ) {
         onKey_( known->key );
      }
   }
}

} // namespace Command
