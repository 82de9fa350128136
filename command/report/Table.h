// Rows of text under headings, in columns as wide as their widest cell.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Command {

class Table {
 public:
   using Row = std::vector< std::string >;

   explicit Table( Row headings ) : rows_{ std::move( headings ) } {}

   // A cell for each heading.
   void add( Row row ) { rows_.push_back( std::move( row ) ); }
   bool empty() const { return rows_.size() == 1; }

   // Columns of numbers alone stand at the right.
   void write( std::ostream & out ) const;

 private:
   std::vector< Row > rows_;
};

} // namespace Command
