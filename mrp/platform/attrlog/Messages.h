// The messages of the mirror stream, put into whatever takes values. What is to be written is said
// once and taken twice: by a ByteCount for its length, and then, once there is room for all of it,
// by a ByteWriter.
#pragma once

#include "mrp/platform/attrlog/Bytes.h"
#include "mrp/platform/attrlog/Protocol.h"

namespace Korv::NboAttrLog {

class ByteCount {
 public:
   template < class T >
   void put( T const & value ) {
      bytes_ += ByteWriter::size( value );
   }
   std::size_t bytes() const { return bytes_; }

 private:
   std::size_t bytes_ = 0;
};

template < class To >
void nextHeaderIs( To & to, std::size_t payloadBytes, U64 entity, S16 attrId, U8 flags ) {
   to.put( static_cast< U32 >( headerBytes + payloadBytes ) );
   to.put( entity );
   to.put( attrId );
   to.put( flags );
}

template < class To, class... Part >
void putMessage( To & to, U64 entity, S16 attrId, Part const &... part ) {
   nextHeaderIs( to, ( std::size_t{ 2 } + ... + ByteWriter::size( part ) ), entity, attrId, plain );
   to.put( tokenBegin );
   ( to.put( part ), ... );
   to.put( tokenEnd );
}

template < class To >
void putMarker( To & to, U64 entity, U16 attrId, Marker marker ) {
   nextHeaderIs( to, 1, entity, static_cast< S16 >( attrId ), transaction );
   to.put( static_cast< U8 >( marker ) );
}

// The record by which an entity is made known.
template < class To, class Key >
void putOrphan( To & to, U64 entity, std::string_view type, Key const & key ) {
   auto const length = []( auto const & value ) {
      return static_cast< U32 >( ByteWriter::size( value ) );
   };
   putMessage( to, entity, orphanAttr, sectionTypeName, length( type ), type, sectionKey,
               length( key ), key, sectionIdentifier, length( entity ), entity );
}

} // namespace Korv::NboAttrLog
