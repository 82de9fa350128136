// What happened in a run, in words, when somebody wants them.
#pragma once

#include "tests/support/Decode.h"

namespace Simulation {

using namespace TestSupport;

class Trace {
 public:
   // Null: nobody does.
   explicit Trace( std::ostream * words ) : words_( words ) {}

   // An operation, an indication.
   void line( double time, U32 agent, std::string const & text ) {
      if ( words_ ) {
         *words_ << time << " agent " << agent << ' ' << text << '\n';
      }
   }
   void frame( double time, U32 agent, std::string const & interface, Bytes const & bytes ) {
      if ( words_ ) {
         line( time, agent, interface + ": " + says( bytes ) + " [" + hex( bytes ) + ']' );
      }
   }

 private:
   std::ostream * words_;
};

} // namespace Simulation
