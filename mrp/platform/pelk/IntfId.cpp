#include "mrp/platform/pelk/IntfId.h"

#include <deque>
#include <unordered_map>

namespace Pelk {

namespace {

// A deque, so that the names keep their addresses, on which the index's keys stand.
struct NameTable {
   std::deque< std::string > names{ "" };
   std::unordered_map< std::string_view, Korv::U64 > places{ { names.front(), 0 } };
};

NameTable & nameTable() {
   static NameTable table;
   return table;
}

} // namespace

IntfId::IntfId( std::string_view name ) {
   auto & table = nameTable();
   if ( auto const found = table.places.find( name ); found != table.places.end() ) {
      index_ = found->second;
      return;
   }
   index_ = table.names.size();
   table.places.emplace( table.names.emplace_back( name ), index_ );
}

std::string const & IntfId::stringValue() const { return nameTable().names[index_]; }

} // namespace Pelk
