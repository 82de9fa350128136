// The terminal, taken over for a picture that is drawn anew, and given back as it was.
#pragma once

#include "mrp/platform/linux/DescriptorWatch.h"

#include "command/show/ShowFrame.h"

#include <optional>
#include <ostream>
#include <termios.h>

namespace Command {

// None if it is no terminal.
std::optional< ScreenSize > terminalSize( std::ostream const & out );

// On the alternate screen, without a cursor and without echo, for its lifetime.
class ShowScreen {
 public:
   enum class Key : Korv::U8 { quit, up, down, pageUp, pageDown };
   // Called from the loop for each key that means something.
   using OnKey = std::function< void( Key key ) >;

   ShowScreen( Linux::RealActivity & activity, std::ostream & out, OnKey onKey );
   ShowScreen( ShowScreen const & ) = delete;
   ShowScreen & operator=( ShowScreen const & ) = delete;
   ~ShowScreen();

   ScreenSize size() const { return terminalSize( out_ ).value_or( ScreenSize() ); }
   void draw( std::string const & picture );
   // Gives the terminal back, stops the process as Ctrl-Z does, and goes on afterwards.
   void suspend();

 private:
   void enter();
   void leave();
   void handleInput();

   std::ostream & out_;
   OnKey onKey_;
   termios before_{};
   bool hasKeyboard_; // and has filled `before_`
   std::optional< Linux::DescriptorWatch > keys_;
};

} // namespace Command
