#include "mrp/receive/MrpParsedAttribute.h"

#include "mrp/platform/korv/Record.h"

#include <algorithm>

namespace Mrp {

void MrpParsedAttribute::attributeValueAllIs( void const * bytes, U32 size ) {
   if ( attributeValue_.putAll( bytes, size ) ) {
      return;
   }
   for ( U32 index = 0; index < size; ++index ) {
      attributeValueIs( index, static_cast< U8 const * >( bytes )[index] );
   }
}

MrpParsedAttribute * MrpParsedAttributes::find( MrpParsedAttributeKey const & key ) const {
   std::size_t const at = locate( key );
   return at == nowhere ? nullptr : records_[at].ptr();
}

std::size_t MrpParsedAttributes::locate( MrpParsedAttributeKey const & key ) const {
   for ( std::size_t const near : { last_ + 1, last_ } ) {
      if ( near < size_ && records_[near]->key() == key ) {
         return last_ = near;
      }
   }
   if ( size_ == 0 ) {
      return nowhere;
   }
   U32 const found = index_[slotOf( key )];
   return found == 0 ? nowhere : last_ = found - 1;
}

// The index slot that holds the key, or the free one where it would go.
std::size_t MrpParsedAttributes::slotOf( MrpParsedAttributeKey const & key ) const {
   std::size_t const mask = index_.size() - 1;
   std::size_t slot = Korv::spread( key ) & mask;
   while ( index_[slot] != 0 && records_[index_[slot] - 1]->key() != key ) {
      slot = ( slot + 1 ) & mask;
   }
   return slot;
}

MrpParsedAttribute * MrpParsedAttributes::findOrMake( MrpParsedAttributeKey const & key ) {
   if ( 2 * ( size_ + 1 ) > index_.size() ) {
      rebuildIndex( std::max< std::size_t >( 64, 2 * index_.size() ) );
   }
   std::size_t const slot = slotOf( key );
   if ( index_[slot] != 0 ) {
      return records_[index_[slot] - 1].ptr();
   }
   MrpParsedAttribute * const record = freshRecord( key );
   index_[slot] = static_cast< U32 >( ++size_ );
   return record;
}

// The next waiting record, made new; one that somebody else still holds is left to them.
MrpParsedAttribute * MrpParsedAttributes::freshRecord( MrpParsedAttributeKey const & key ) {
   if ( size_ == records_.size() ) {
      records_.emplace_back( new MrpParsedAttribute( key ) );
   }
   auto & record = records_[size_];
   if ( record->references() > 1 ) {
      record = new MrpParsedAttribute( key );
   }
   record->key_ = key;
   record->attributeEvent_ = 0;
   record->attributeValue_.clear();
   return record.ptr();
}

void MrpParsedAttributes::erase( MrpParsedAttributeKey const & key ) {
   std::size_t const at = locate( key );
   if ( at == nowhere ) {
      return;
   }
   auto const place = records_.begin() + static_cast< std::ptrdiff_t >( at );
   std::rotate( place, place + 1, records_.begin() + static_cast< std::ptrdiff_t >( size_ ) );
   --size_;
   last_ = 0;
   rebuildIndex( index_.size() );
}

void MrpParsedAttributes::clear() {
   if ( size_ != 0 ) {
      std::fill( index_.begin(), index_.end(), 0u );
   }
   size_ = 0;
   last_ = 0;
}

void MrpParsedAttributes::rebuildIndex( std::size_t slots ) {
   index_.assign( slots, 0u );
   for ( std::size_t at = 0; at < size_; ++at ) {
      index_[slotOf( records_[at]->key() )] = static_cast< U32 >( at + 1 );
   }
}

} // namespace Mrp
