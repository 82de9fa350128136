#include "mrp/platform/attrlog/Input.h"

#include "mrp/platform/korv/RangeException.h"

#include <algorithm>

namespace Korv::NboAttrLog {

Input::~Input() { rootAdapters_.clear(); }

void Input::rootIs( char const * typeName, Root root ) { roots_[typeName] = std::move( root ); }

void Input::bytesInc( std::size_t count ) {
   bytes_ += count;
   ByteReader::checked( bytes_ <= maxBytes_, "more than an observer may hold" );
}

void Input::handleBytes( std::span< U8 const > bytes ) {
   rest_.insert( rest_.end(), bytes.begin(), bytes.end() );
   std::size_t at = 0;
   if ( !greeted_ && rest_.size() >= greetingBytes ) {
      handleGreeting( ByteReader( std::span( rest_ ).first( greetingBytes ), names_ ) );
      greeted_ = true;
      at = greetingBytes;
   }
   while ( greeted_ && rest_.size() - at >= lengthBytes ) {
      auto const rest = std::span< U8 const >( rest_ ).subspan( at );
      auto const size = ByteReader( rest, names_ ).get< U32 >();
      ByteReader::checked( size >= headerBytes && size <= maxMessageBytes,
                           "a message of impossible length" );
      if ( rest.size() - lengthBytes < size ) {
         break;
      }
      try {
         handleMessage( ByteReader( rest.subspan( lengthBytes, size ), names_ ), size );
      } catch ( RangeException const & error ) {
         throw StreamError( error.what() );
      }
      ++messages_;
      at += lengthBytes + size;
   }
   rest_.erase( rest_.begin(), rest_.begin() + static_cast< std::ptrdiff_t >( at ) );
}

bool Input::isBrought() const {
   return !rootAdapters_.empty() && rest_.empty() &&
          std::ranges::all_of( adapters_,
                               []( auto const & entry ) { return entry.second->isBrought(); } );
}

void Input::handleGreeting( ByteReader greeting ) {
   auto const word = greeting.take( magicBytes );
   ByteReader::checked( std::equal( word.begin(), word.end(), magic ), "not a mirror stream" );
   ByteReader::checked( greeting.get< U16 >() == majorVersion, "a stream of another version" );
}

void Input::handleMessage( ByteReader message, std::size_t bytes ) {
   auto const entity = message.get< U64 >();
   auto const attrId = message.get< S16 >();
   auto const flags = message.get< U8 >();
   auto const found = adapters_.find( entity );
   Adapter * const adapter = found == adapters_.end() ? nullptr : found->second;
   if ( flags == transaction ) {
      auto const marker = message.get< U8 >();
      ByteReader::checked( marker <= static_cast< U8 >( Marker::end ) && attrId > 0,
                           "a marker of no meaning" );
      message.expectEnd();
      ByteReader::checked( adapter || orphans_.contains( entity ), "a marker for no entity" );
      if ( adapter ) {
         adapter->handleAttrTransaction( static_cast< U16 >( attrId ),
                                         static_cast< Marker >( marker ) );
      }
      return;
   }
   ByteReader::checked( flags == plain, "flags of no meaning" );
   ByteReader::checked( bytes >= headerBytes + 2, "a message without tokens" );
   message.expect( tokenBegin, "a message without its first token" );
   ByteReader payload = message.section( bytes - headerBytes - 2 );
   message.expect( tokenEnd, "a message without its last token" );
   if ( attrId == orphanAttr ) {
      handleOrphan( entity, payload );
   } else if ( adapter ) {
      adapter->handleAttrDeserialization( attrId, payload );
   } else {
      ByteReader::checked( orphans_.contains( entity ), "a message about no entity" );
   }
}

void Input::handleOrphan( U64 identifier, ByteReader & in ) {
   auto const section = [&]( U8 number ) {
      in.expect( number, "a section out of order" );
      return in.section( in.get< U32 >() );
   };
   Orphan orphan;
   orphan.typeName = section( sectionTypeName ).getText();
   in.expect( sectionKey, "a section out of order" );
   auto const key = in.take( in.get< U32 >() );
   orphan.key.assign( key.begin(), key.end() );
   ByteReader::checked( section( sectionIdentifier ).get< U64 >() == identifier,
                        "a record of another entity" );
   in.expectEnd();
   ByteReader::checked( !adapters_.contains( identifier ) && !orphans_.contains( identifier ),
                        "an identifier used twice" );
   if ( auto const root = roots_.find( orphan.typeName ); root != roots_.end() ) {
      ByteReader::checked( rootsSeen_.insert( orphan.typeName ).second, "a second root of a type" );
      rootAdapters_.push_back( root->second( *this, identifier ) );
   } else {
      bytesInc( orphan.bytes() );
      orphans_[identifier] = std::move( orphan );
   }
}

ByteReader Input::takeOrphan( U64 identifier, char const * typeName ) {
   auto const found = orphans_.find( identifier );
   ByteReader::checked( found != orphans_.end(), "a child that was not made known" );
   ByteReader::checked( found->second.typeName == typeName, "a child of another type" );
   bytes_ -= found->second.bytes();
   taken_ = std::move( found->second );
   orphans_.erase( found );
   return { taken_.key, names_ };
}

} // namespace Korv::NboAttrLog
