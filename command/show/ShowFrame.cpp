#include "command/show/ShowFrame.h"

#include "mrp/platform/korv/Clock.h"

#include <algorithm>

namespace Command {

namespace {

constexpr char const * plain = "\033[0m";
constexpr char const * bold = "\033[1m";
constexpr char const * reverse = "\033[7m";
constexpr char const * home = "\033[H";
constexpr char const * clearLine = "\033[K";
constexpr char const * clearBelow = "\033[J";

std::string squeezed( std::string const & line ) {
   std::string text;
   std::ranges::unique_copy( line, std::back_inserter( text ),
                             []( char a, char b ) { return a == ' ' && b == ' '; } );
   return text;
}

} // namespace

std::string ShowFrame::picture( std::string const & head, ShowLines const & lines, ScreenSize size,
                                Korv::Seconds now ) {
   std::size_t const room = std::max( size.rows, std::size_t{ 2 } ) - 1;
   bool const isCut = lines.size() > room;
   std::size_t const shown = isCut ? room - 1 : lines.size();
   top_ = std::clamp( top_, 0L, static_cast< long >( lines.size() - shown ) );
   auto const top = static_cast< std::size_t >( top_ );

   std::string text = home;
   std::string first = head.substr( 0, size.columns );
   first.resize( size.columns, ' ' );
   text += reverse + first + plain;

   decltype( since_ ) since;
   nextEnd_ = Korv::never;
   for ( std::size_t i = 0; i < lines.size(); ++i ) {
      bool const isShown = i >= top && i < top + shown;
      bool isNew = false;
      if ( lines[i].kind == ShowLine::Kind::plain && !lines[i].text.empty() ) {
         std::string const key = squeezed( lines[i].text );
         auto const known = since_.find( key );
         Korv::Seconds const came = known != since_.end() ? known->second
                                    : isFirst_            ? now - moment
                                                          : now;
         since[key] = came;
         isNew = now < came + moment;
         if ( isNew && isShown ) {
            nextEnd_ = std::min( nextEnd_, came + moment );
         }
      }
      if ( isShown ) {
         text += "\r\n";
         text += isNew ? reverse : lines[i].kind == ShowLine::Kind::heading ? bold : "";
         text += lines[i].text.substr( 0, size.columns );
         text += plain;
         text += lines[i].text.size() < size.columns ? clearLine : "";
      }
   }
   since_ = std::move( since );
   isFirst_ = false;
   if ( isCut ) {
      std::string const rest = "... " + std::to_string( lines.size() - shown - top ) +
                               " more lines below, " + std::to_string( top ) + " above";
      text += std::string( "\r\n" ) + bold + rest.substr( 0, size.columns ) + plain + clearLine;
   }
   return text + clearBelow;
}

} // namespace Command
