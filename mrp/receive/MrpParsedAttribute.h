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
   using AttributeValue = Korv::ByteQueue< 62 >;

   explicit MrpParsedAttribute( MrpParsedAttributeKey const & key ) : key_( key ) {}

   MrpParsedAttributeKey const & key() const { return key_; }

   // A MrpThreePackedEvent number.
   U8 attributeEvent() const { return attributeEvent_; }
   void attributeEventIs( U8 v ) { attributeEvent_ = v; }

   AttributeValue const & attributeValue() const { return attributeValue_; }
   void attributeValueIs( U32 index, U8 byte ) {
      attributeValue_.put( ValueIndex( index ).value(), byte );
   }
   // attributeValueIs for indices 0 to size - 1.
   void attributeValueAllIs( void const * bytes, U32 size );
   void attributeValueEnq( U8 byte ) { attributeValue_.enq( byte ); }
   U8 attributeValueDeq() { return attributeValue_.deq(); }
   void attributeValueDel( U32 index ) { attributeValue_.del( ValueIndex( index ).value() ); }
   void attributeValueDelAll() { attributeValue_.clear(); }

 private:
   friend class MrpParsedAttributes;

   MrpParsedAttributeKey key_;
   AttributeValue attributeValue_;
   U8 attributeEvent_ = 0;
};

// Their collection, by key. It is filled and emptied with each frame and so keeps its records and
// its room: after the first large frame it allocates nothing.
//
//  1. Records 0 to size() - 1 are the frame's, in the order of their first arrival; those behind
//     wait for later frames.
//  2. A frame is asked for its attributes in that same order, so that a look-up first tries the
//     record behind the one found last.
class MrpParsedAttributes {
 public:
   std::size_t size() const { return size_; }
   bool isMember( MrpParsedAttributeKey const & key ) const { return find( key ) != nullptr; }
   MrpParsedAttribute * find( MrpParsedAttributeKey const & key ) const;
   MrpParsedAttribute * findOrMake( MrpParsedAttributeKey const & key );
   void erase( MrpParsedAttributeKey const & key );
   void clear();

 private:
   static constexpr std::size_t nowhere = ~std::size_t{ 0 };

   std::size_t locate( MrpParsedAttributeKey const & key ) const;
   std::size_t slotOf( MrpParsedAttributeKey const & key ) const;
   MrpParsedAttribute * freshRecord( MrpParsedAttributeKey const & key );
   void rebuildIndex( std::size_t slots );

   std::vector< Korv::Ptr< MrpParsedAttribute > > records_;
   std::vector< U32 > index_; // 0: free; else a place in records_, counted from 1
   std::size_t size_ = 0;
   mutable std::size_t last_ = 0; // of the latest find
};

} // namespace Mrp
