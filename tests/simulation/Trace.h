// What happened in a run: the digest always, the words when somebody wants them.
#pragma once

#include "tests/support/Decode.h"

#include <string_view>

namespace Simulation {

using namespace TestSupport;

class Trace {
 public:
   // Null: the digest alone.
   explicit Trace( std::ostream * words = nullptr ) : words_( words ) {}

   // An operation, an indication.
   void line( double time, U32 agent, std::string const & text ) {
      digest( time, agent, text );
      if ( words_ ) {
         *words_ << time << " agent " << agent << ' ' << text << '\n';
      }
   }
   void frame( double time, U32 agent, std::string const & interface, Bytes const & bytes ) {
      digest( time, agent, interface );
      digest( bytes.data(), bytes.size() );
      if ( words_ ) {
         *words_ << time << " agent " << agent << ' ' << interface << ": " << says( bytes ) << " ["
                 << hex( bytes ) << "]\n";
      }
   }

   U64 digest() const { return digest_; }

 private:
   void digest( void const * data, std::size_t size ) { // FNV-1a
      for ( char const c : std::string_view( static_cast< char const * >( data ), size ) ) {
         digest_ = ( digest_ ^ static_cast< U8 >( c ) ) * 0x100'0000'01b3;
      }
   }
   void digest( double time, U32 agent, std::string const & text ) {
      digest( &time, sizeof time );
      digest( &agent, sizeof agent );
      digest( text.data(), text.size() );
   }

   std::ostream * words_;
   U64 digest_ = 0xcbf2'9ce4'8422'2325;
};

} // namespace Simulation
