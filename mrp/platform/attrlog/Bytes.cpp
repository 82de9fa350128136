#include "mrp/platform/attrlog/Bytes.h"

#include <algorithm>

namespace Korv::NboAttrLog {

Pelk::IntfId NameGuard::intfId( std::string_view name ) {
   std::string text( name );
   if ( !names_.contains( text ) ) {
      ByteReader::checked( name.size() <= maxBytes, "the name of an interface is too long" );
      ByteReader::checked( names_.size() < maxNames, "too many names of interfaces" );
      names_.insert( text );
   }
   return Pelk::IntfId( text );
}

void ByteWriter::putText( std::string_view text ) {
   auto const size = static_cast< U16 >( std::min< std::size_t >( text.size(), 0xffff ) );
   put( size );
   append( text.data(), size );
}

std::string_view ByteReader::getText() {
   auto const part = take( get< U16 >() );
   return { reinterpret_cast< char const * >( part.data() ), part.size() };
}

} // namespace Korv::NboAttrLog
