#include "mrp/receive/MrpParsedAttribute.h"

#include "mrp/platform/korv/Record.h"

#include <algorithm>

namespace Mrp {

void MrpParsedAttribute::putEach( void const * bytes, U32 size ) {
   for ( U32 index = 0; index < size; ++index ) {
      attributeValueIs( index, static_cast< U8 const * >( bytes )[index] );
   }
}

// A record that somebody else still holds is left to them.
void MrpParsedAttributes::replaceRecord( MrpParsedAttributeKey key ) {
   if ( size_ + 1 == records_.size() ) {
      records_.emplace_back();
   }
   records_[size_] = new MrpParsedAttribute( key );
}

MrpParsedAttribute * MrpParsedAttributes::search( MrpParsedAttributeKey key ) const {
   std::size_t const at = locate( key );
   if ( at == nowhere ) {
      return nullptr;
   }
   last_ = at;
   return records_[at].ptr();
}

std::size_t MrpParsedAttributes::locate( MrpParsedAttributeKey key ) const {
   if ( !isSorted_ ) {
      U32 const found = index_[slotOf( key )];
      return found == 0 ? nowhere : found - 1;
   }
   auto const end = records_.begin() + static_cast< std::ptrdiff_t >( size_ );
   auto const found =
      std::lower_bound( records_.begin(), end, key,
                        []( auto const & record, auto const & k ) { return record->key() < k; } );
   return found != end && ( *found )->key() == key
             ? static_cast< std::size_t >( found - records_.begin() )
             : nowhere;
}

// The index slot that holds the key, or the free one where it would go.
std::size_t MrpParsedAttributes::slotOf( MrpParsedAttributeKey key ) const {
   std::size_t const mask = index_.size() - 1;
   std::size_t slot = Korv::spread( key ) & mask;
   while ( index_[slot] != 0 && records_[index_[slot] - 1]->key() != key ) {
      slot = ( slot + 1 ) & mask;
   }
   return slot;
}

// A key that does not come behind all before it.
MrpParsedAttribute * MrpParsedAttributes::findOrInsert( MrpParsedAttributeKey key ) {
   std::size_t const at = locate( key );
   if ( at != nowhere ) {
      return records_[at].ptr();
   }
   MrpParsedAttribute * const record = append( key );
   if ( isSorted_ || 2 * size_ > index_.size() ) {
      isSorted_ = false;
      rebuildIndex();
   } else {
      index_[slotOf( key )] = static_cast< U32 >( size_ );
   }
   return record;
}

void MrpParsedAttributes::erase( MrpParsedAttributeKey key ) {
   std::size_t const at = locate( key );
   if ( at == nowhere ) {
      return;
   }
   auto const place = records_.begin() + static_cast< std::ptrdiff_t >( at );
   std::rotate( place, place + 1, records_.begin() + static_cast< std::ptrdiff_t >( size_ ) );
   --size_;
   last_ = nowhere;
   if ( !isSorted_ ) {
      rebuildIndex();
   }
}

void MrpParsedAttributes::clear() {
   size_ = 0;
   isSorted_ = true;
   last_ = nowhere;
}

void MrpParsedAttributes::rebuildIndex() {
   std::size_t slots = std::max< std::size_t >( 64, index_.size() );
   while ( slots < 4 * size_ ) {
      slots *= 2;
   }
   index_.assign( slots, 0u );
   for ( std::size_t at = 0; at < size_; ++at ) {
      index_[slotOf( records_[at]->key() )] = static_cast< U32 >( at + 1 );
   }
}

} // namespace Mrp
