#include "command/report/ReportInside.h"

#include "mrp/frame/MrpSm.h"

#include <algorithm>
#include <tuple>

namespace Command {

namespace {

constexpr auto byInterfaceAndType = []( auto const & entry ) {
   return std::tie( entry.interface, entry.attributeType );
};

template < class T >
ReportInside::Field fieldOf( char const * name, T const & value ) {
   if constexpr ( std::is_same_v< T, Pelk::IntfId > ) {
      return value.stringValue();
   } else if constexpr ( std::is_same_v< T, bool > ) {
      return value;
   } else if ( std::string_view( name ) == "attributeKey" ) {
      return std::to_string( value ); // as keys are written everywhere: they need 64 bits
   } else {
      return Korv::U64{ value };
   }
}

} // namespace

ReportInside gatherInside( Mrp::MrpSm const & sm ) {
   ReportInside inside;
   for ( auto iter = sm.mrpAttrIter().walk(); iter; ++iter ) {
      ReportInside::AttributeIndex index{
         iter.key().intfId().stringValue(), iter.key().attributeType(), {} };
      for ( auto key = iter.value()->attributeKey().walk(); key; ++key ) {
         index.keys.push_back( key.key() );
      }
      inside.attributeIndex.push_back( std::move( index ) );
   }
   std::ranges::sort( inside.attributeIndex, {}, byInterfaceAndType );

   if ( auto const * const database = sm.mrpStatus()->application( sm.mrpLib()->application() ) ) {
      for ( auto time = database->leaveAllTime().walk(); time; ++time ) {
         inside.leaveAllTime.push_back(
            { time.key().intfId().stringValue(), time.key().attributeType(), time.value() } );
      }
   }
   std::ranges::sort( inside.leaveAllTime, {}, byInterfaceAndType );

   if ( auto const & context = sm.parseContext() ) {
      Korv::forEachScalar( *context, [&]( char const * name, auto const & value ) {
         inside.parseContext.emplace_back( name, fieldOf( name, value ) );
      } );
   }
   return inside;
}

} // namespace Command
