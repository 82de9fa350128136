#include "mrp/platform/attrlog/Bytes.h"

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

std::string_view ByteReader::getText() {
   auto const part = take( get< U16 >() );
   return { reinterpret_cast< char const * >( part.data() ), part.size() };
}

} // namespace Korv::NboAttrLog
