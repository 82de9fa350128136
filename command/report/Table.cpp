#include "command/report/Table.h"

#include <algorithm>

namespace Command {

namespace {

bool isNumber( std::string const & text ) {
   return !text.empty() &&
          std::ranges::all_of( text, []( char c ) { return c >= '0' && c <= '9'; } );
}

} // namespace

void Table::write( std::ostream & out ) const {
   std::size_t const columns = rows_.front().size();
   std::vector< std::size_t > widths( columns );
   std::vector< bool > atRight( columns );
   for ( std::size_t column = 0; column < columns; ++column ) {
      for ( Row const & row : rows_ ) {
         widths[column] = std::max( widths[column], row[column].size() );
      }
      atRight[column] = std::all_of( rows_.begin() + 1, rows_.end(),
                                     [&]( Row const & row ) { return isNumber( row[column] ); } );
   }
   for ( Row const & row : rows_ ) {
      std::string line;
      for ( std::size_t column = 0; column < columns; ++column ) {
         std::string const blanks( widths[column] - row[column].size(), ' ' );
         line += column > 0 ? "  " : "";
         line += atRight[column] ? blanks + row[column] : row[column] + blanks;
      }
      line.erase( line.find_last_not_of( ' ' ) + 1 );
      out << line << '\n';
   }
}

} // namespace Command
