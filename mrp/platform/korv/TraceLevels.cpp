#include "mrp/platform/korv/TraceLevels.h"

#include "mrp/platform/korv/RangeException.h"

#include <algorithm>
#include <vector>

namespace Korv {

namespace {

[[noreturn]] void refuse( std::string_view text, std::string const & why ) {
   throwRangeException( "'" + std::string( text ) + "' " + why );
}

std::vector< std::string_view > itemsOf( std::string_view text ) {
   std::vector< std::string_view > items;
   for ( ;; ) {
      auto const comma = text.find( ',' );
      items.push_back( text.substr( 0, comma ) );
      if ( comma == std::string_view::npos ) {
         return items;
      }
      text.remove_prefix( comma + 1 );
   }
}

// "4" or "4-8".
U32 levelsOfItem( std::string_view item ) {
   auto const isDigit = [item]( std::size_t at ) { return item[at] >= '0' && item[at] <= '9'; };
   bool const isOne = item.size() == 1 && isDigit( 0 );
   bool const isRange = item.size() == 3 && isDigit( 0 ) && item[1] == '-' && isDigit( 2 );
   if ( !isOne && !( isRange && item.front() <= item.back() ) ) {
      refuse( item, "is no level: 0 to 9, or a range such as 4-8" );
   }
   U32 levels = 0;
   for ( char level = item.front(); level <= item.back(); ++level ) {
      levels |= 1u << ( level - '0' );
   }
   return levels;
}

std::string namesOf( std::span< TraceHelper * const > handles ) {
   std::string names;
   for ( TraceHelper const * const handle : handles ) {
      names += names.empty() ? "" : ", ";
      names += handle->name();
   }
   return names;
}

} // namespace

U32 levelsFromText( std::string_view text ) {
   U32 levels = 0;
   for ( std::string_view const item : itemsOf( text ) ) {
      levels |= levelsOfItem( item );
   }
   return levels;
}

void traceLevelsAre( std::string_view text, std::span< TraceHelper * const > handles ) {
   std::vector< U32 > levels( handles.size() );
   auto handle = handles.end();
   for ( std::string_view item : itemsOf( text ) ) {
      auto const slash = item.find( '/' );
      if ( slash != std::string_view::npos ) {
         handle = std::ranges::find( handles, item.substr( 0, slash ), &TraceHelper::name );
         if ( handle == handles.end() ) {
            refuse( item, "names no trace handle: " + namesOf( handles ) );
         }
         item.remove_prefix( slash + 1 );
      } else if ( handle == handles.end() ) {
         refuse( item, "is no HANDLE/LEVELS, such as Mrp/4-8" );
      }
      levels[static_cast< std::size_t >( handle - handles.begin() )] |= levelsOfItem( item );
   }
   for ( std::size_t i = 0; i < handles.size(); ++i ) {
      if ( levels[i] ) {
         handles[i]->levelsIs( levels[i] );
      }
   }
}

} // namespace Korv
