// The attributes of the frame at hand.
#pragma once

#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/Ptr.h"
#include "mrp/vocabulary/MrpKeys.h"

#include <vector>

namespace Mrp {

// One received attribute: its last event in the frame and the value's bytes as the decoder saved
// them, byte i in slot i.
class MrpParsedAttribute : public Korv::PtrInterface {
 public:
   // Every kind's value fits inside.
   using AttributeValue = Korv::ByteQueue< 38 >;

   explicit MrpParsedAttribute( MrpParsedAttributeKey const & key ) : key_( key ) {}

   MrpParsedAttributeKey const & key() const { return key_; }

   // A MrpThreePackedEvent number.
   U8 attributeEvent() const { return attributeEvent_; }
   void attributeEventIs( U8 v ) { attributeEvent_ = v; }

   AttributeValue const & attributeValue() const { return attributeValue_; }
   void attributeValueIs( U32 index, U8 byte ) {
      attributeValue_.put( ValueIndex( index ).value(), byte );
   }
   // attributeValueIs for the bytes of a record, from index 0.
   template < class Record >
   void attributeValueAllIs( Record const & record ) {
      if ( !attributeValue_.putAll( &record, sizeof record ) ) {
         putEach( &record, sizeof record );
      }
   }
   void attributeValueEnq( U8 byte ) { attributeValue_.enq( byte ); }
   U8 attributeValueDeq() { return attributeValue_.deq(); }
   void attributeValueDel( U32 index ) { attributeValue_.del( ValueIndex( index ).value() ); }
   void attributeValueDelAll() { attributeValue_.clear(); }

 private:
   friend class MrpParsedAttributes;

   void putEach( void const * bytes, U32 size );

   // A large frame's records do not fit into the nearest cache: what is read of each of them stands
   // close together.
   U8 attributeEvent_ = 0;
   MrpParsedAttributeKey key_;
   AttributeValue attributeValue_;
};

// Their collection, by key. It is filled and emptied with each frame and so keeps its records and
// its room: after the first large frame it allocates nothing.
//
//  1. Records 0 to size() - 1 are the frame's, in the order of their first arrival; those behind
//     wait for later frames, and the last of all is null.
//  2. While each key has come behind all before it, which is how frames are made, the records are
//     sorted and need no index. With the first that does not, index_ has a place for each.
//  3. A frame is asked for its attributes in the order of their arrival, so that a look-up first
//     tries the record behind the one found last.
class MrpParsedAttributes {
 public:
   std::size_t size() const { return size_; }
   bool isMember( MrpParsedAttributeKey key ) const { return find( key ) != nullptr; }
   MrpParsedAttribute * find( MrpParsedAttributeKey key ) const {
      if ( last_ + 1 < size_ && records_[last_ + 1]->key_ == key ) {
         return records_[++last_].ptr();
      }
      return search( key );
   }
   MrpParsedAttribute * findOrMake( MrpParsedAttributeKey key ) {
      if ( isSorted_ && ( size_ == 0 || records_[size_ - 1]->key_ < key ) ) {
         return append( key );
      }
      return findOrInsert( key );
   }
   void erase( MrpParsedAttributeKey key );
   void clear();

 private:
   // Such that the next place is that of record 0.
   static constexpr std::size_t nowhere = ~std::size_t{ 0 };

   // The next waiting record, made new.
   MrpParsedAttribute * append( MrpParsedAttributeKey key ) {
      MrpParsedAttribute const * const waiting = records_[size_].ptr();
      if ( !waiting || waiting->references() > 1 ) [[unlikely]] {
         replaceRecord( key );
      }
      MrpParsedAttribute & record = *records_[size_++];
      record.key_ = key;
      record.attributeEvent_ = 0;
      record.attributeValue_.clear();
      return &record;
   }
   // Puts an object into the room of the next waiting record.
   void replaceRecord( MrpParsedAttributeKey key );
   // find and findOrMake, where what they try first does not do.
   MrpParsedAttribute * search( MrpParsedAttributeKey key ) const;
   MrpParsedAttribute * findOrInsert( MrpParsedAttributeKey key );
   // The key's place in records_, or nowhere.
   std::size_t locate( MrpParsedAttributeKey key ) const;
   std::size_t slotOf( MrpParsedAttributeKey key ) const;
   void rebuildIndex();

   std::vector< Korv::Ptr< MrpParsedAttribute > > records_{ nullptr };
   std::size_t size_ = 0;
   bool isSorted_ = true;
   std::vector< U32 > index_; // 0: free; else a place in records_, counted from 1; not kept up
                              // while isSorted_
   mutable std::size_t last_ = nowhere; // of the latest find
};

} // namespace Mrp
