#include "command/script/ScriptCommand.h"

#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"
#include "command/replay/ParticipantReport.h"
#include "command/replay/SentCaptures.h"
#include "command/script/ScriptRun.h"

#include <cstdlib>
#include <utility>

namespace Command {

namespace {

// For its lifetime a broken invariant has the last words: they are called right where it broke,
// with the engine's state as it then stands, and what they give is the status of the process.
// Nothing is unwound, for an engine in that state cannot be trusted to end in order.
class LastWords {
 public:
   using Words = std::function< int( char const * assertion ) >;

   explicit LastWords( Words words ) : words_( std::move( words ) ) {
      speaker_ = this;
      Korv::assertionHandlerIs( &LastWords::handle );
   }
   LastWords( LastWords const & ) = delete;
   LastWords & operator=( LastWords const & ) = delete;
   ~LastWords() {
      Korv::assertionHandlerIs( nullptr );
      speaker_ = nullptr;
   }

 private:
   // An assertion that breaks within the last words ends the process in the usual way.
   static void handle( char const * assertion ) {
      if ( LastWords * const speaker = std::exchange( speaker_, nullptr ) ) {
         std::_Exit( speaker->words_( assertion ) );
      }
   }

   static inline LastWords * speaker_ = nullptr;
   Words words_;
};

std::vector< std::string > namesOf( Script const & script ) {
   std::vector< std::string > names;
   for ( auto const & interface : script.interfaces ) {
      names.push_back( interface.name );
   }
   return names;
}

} // namespace

int script( ScriptOptions const & options, std::ostream & out, std::ostream & err ) {
   constexpr int aborted = 1;
   constexpr int failed = 2;
   Script const script = readScriptFile( options.path );
   for ( std::string const & warning : script.warnings ) {
      err << "mrp: warning: " << warning << '\n';
   }
   SentCaptures const captures( options.outDirectory, namesOf( script ), { options.path } );

   Participant participant( settingsOf( script ) );
   auto const tell = [&]( std::optional< std::string > const & words ) {
      Report report = gatherReport( participant );
      report.inside = gatherInside( participant.sm() );
      report.aborted = words;
      captures.write( report, 0 );
      ( options.json ? writeJson : writeText )( report, out );
   };
   LastWords const lastWords( [&]( char const * assertion ) {
      try {
         tell( assertion );
         out.flush();
         err.flush();
         return out ? aborted : failed;
      } catch ( CommandError const & error ) {
         err << "mrp: " << error.what() << std::endl;
         return failed;
      }
   } );
   try {
      runScript( script, participant );
   } catch ( Korv::RangeException const & error ) {
      tell( error.what() );
      return aborted;
   } catch ( CommandError const & error ) {
      throw CommandError( options.path + ": " + error.what() );
   }
   tell( {} );
   return 0;
}

} // namespace Command
