// Everything that an entity publishes, with all that stands below it, as text: two trees are equal
// if these are. Collections are sorted by key, since their order says nothing.
#pragma once

#include "mrp/platform/attrlog/Bytes.h"
#include "mrp/platform/korv/Attributes.h"

#include "tests/support/Values.h"

#include <map>
#include <string>

namespace TestSupport {

template < class T >
std::string valueText( T const & value ) {
   std::vector< U8 > bytes( Korv::NboAttrLog::ByteWriter::size( value ) );
   Korv::NboAttrLog::ByteWriter( bytes.data() ).put( value );
   return hex( bytes );
}

template < class E >
std::string treeText( E const & entity, std::string const & indent = "" ) {
   using Kind = Korv::AttributeKind;
   std::string all;
   E::attributes().forEach( [&]( auto const & attribute ) {
      constexpr Kind kind = Korv::kindOf< decltype( attribute ) >;
      auto const & value = ( entity.*attribute.reader )();
      all += indent + attribute.name + ":";
      if constexpr ( kind == Kind::scalar ) {
         all += ' ' + valueText( value ) + '\n';
      } else if constexpr ( kind == Kind::queue ) {
         all += ' ' + std::to_string( value.head() ) + " +" + std::to_string( value.count() ) + ":";
         for ( U32 i = 0; i < value.count(); ++i ) {
            all += ' ' + valueText( value.at( value.position( i ) ) );
         }
         all += '\n';
      } else {
         std::map< std::string, std::string > members;
         for ( auto member = value.walk(); member; ++member ) {
            auto & text = members[valueText( member.key() )];
            if constexpr ( kind == Kind::map ) {
               text = ' ' + valueText( member.value() ) + '\n';
            } else {
               text = '\n' + treeText( *member.value(), indent + "   " );
            }
         }
         all += '\n';
         for ( auto const & [key, text] : members ) {
            all += indent + ' ' + key + " =" + text;
         }
      }
   } );
   return all;
}

} // namespace TestSupport
