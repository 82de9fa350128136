#include "command/ShowScreen.h"

#include <csignal>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Command {

namespace {
constexpr char const * enterAlternate = "\033[?1049h\033[?25l\033[H\033[J";
constexpr char const * leaveAlternate = "\033[0m\033[?25h\033[?1049l";
} // namespace

bool isStandardOutput( std::ostream const & out ) { return &out == &std::cout; }

std::optional< ScreenSize > terminalSize( std::ostream const & out ) {
   winsize window{};
   if ( !isStandardOutput( out ) || ::isatty( STDOUT_FILENO ) != 1 ||
        ::ioctl( STDOUT_FILENO, TIOCGWINSZ, &window ) != 0 ) {
      return std::nullopt;
   }
   bool const isKnown = window.ws_row > 0 && window.ws_col > 0;
   return isKnown ? ScreenSize{ window.ws_row, window.ws_col } : ScreenSize();
}

ShowScreen::ShowScreen( Linux::RealActivity & activity, std::ostream & out,
                        std::function< void() > quit )
   : out_( out ), quit_( std::move( quit ) ),
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

void ShowScreen::handleInput() {
   char key = 0;
   auto const got = ::read( STDIN_FILENO, &key, 1 );
   if ( got <= 0 ) { // the terminal has gone
      keys_.reset();
      return quit_();
   }
   if ( key == 'q' || key == 'Q' ) {
      quit_();
   }
}

} // namespace Command
