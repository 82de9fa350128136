// The bytes of an attribute's value, in a ring of 65 slots numbered 0 to 64. The slots in use are
// the span: `count` of them from the head on.
//
// Values are short (a VLAN has 2 bytes, a failed talker 34) and there are hundreds of thousands of
// them, so only the span is kept: up to `inlineBytes` of it in the object, a longer one in a block
// of 65. A slot outside the span reads as 0.
#pragma once

#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/Types.h"

#include <cstring>

namespace Korv {

inline constexpr U32 byteQueueSlots = 65;

struct ByteQueueMetadata {
   U8 head = 0;
   U8 count = 0;
   bool operator==( ByteQueueMetadata const & ) const = default;
};

template < U32 inlineBytes >
class ByteQueue {
   static_assert( inlineBytes >= sizeof( U8 * ) && inlineBytes < byteQueueSlots );

 public:
   ByteQueue() = default;
   ByteQueue( ByteQueue const & ) = delete;
   ByteQueue & operator=( ByteQueue const & ) = delete;
   ~ByteQueue() {
      if ( !isInline() ) {
         delete[] block();
      }
   }

   U32 head() const { return head_; }
   U32 count() const { return count_; }
   ByteQueueMetadata metadata() const { return { head_, count_ }; }
   // The slot of the i-th byte of the span.
   U32 position( U32 i ) const { return ( head_ + i ) % byteQueueSlots; }

   // The byte in a slot; 0 for a slot outside the span.
   U8 at( U32 slot ) const {
      U32 const i = offset( slot );
      return i < count_ ? data()[i] : U8{ 0 };
   }

   // True if slots 0 onward hold exactly these bytes; slots outside the span count as 0.
   bool sameAs( void const * bytes, U32 size ) const {
      if ( head_ == 0 && size <= count_ ) [[likely]] {
         return std::memcmp( data(), bytes, size ) == 0;
      }
      for ( U32 i = 0; i < size; ++i ) {
         if ( at( i ) != static_cast< U8 const * >( bytes )[i] ) {
            return false;
         }
      }
      return true;
   }

   void copyOut( void * bytes, U32 size ) const {
      if ( head_ == 0 && size <= count_ ) [[likely]] {
         std::memcpy( bytes, data(), size );
         return;
      }
      for ( U32 i = 0; i < size; ++i ) {
         static_cast< U8 * >( bytes )[i] = at( i );
      }
   }

   // Writes one slot: in the span, right behind it or right before it; an empty queue starts at
   // the slot. The caller has checked that the slot exists.
   void put( U32 slot, U8 byte ) {
      if ( count_ == 0 ) {
         head_ = static_cast< U8 >( slot );
      }
      U32 const i = offset( slot );
      if ( i < count_ ) {
         data()[i] = byte;
      } else if ( i == count_ ) {
         enq( byte );
      } else if ( i + 1 == byteQueueSlots ) {
         appendSlot();
         std::memmove( data() + 1, data(), count_ - 1u );
         data()[0] = byte;
         head_ = static_cast< U8 >( slot );
      } else {
         throwRangeException( "outside of queue" );
      }
   }

   // Slots 0 onward get these bytes, as by put() one after the other, in one stroke. False, with
   // nothing done, where the span does not allow that.
   bool putAll( void const * bytes, U32 size ) {
      if ( count_ == 0 && size <= inlineBytes ) {
         head_ = 0;
         count_ = static_cast< U8 >( size );
         std::memcpy( inline_, bytes, size );
         return true;
      }
      if ( count_ == 0 ) {
         head_ = 0;
         while ( count_ < size ) {
            appendSlot();
         }
      } else if ( head_ != 0 || count_ < size ) {
         return false;
      }
      std::memcpy( data(), bytes, size );
      return true;
   }

   void enq( U8 byte ) {
      if ( count_ == byteQueueSlots ) {
         throwRangeException( "ArrayQueueStack full" );
      }
      appendSlot() = byte;
   }

   // The head's byte, or 0 when empty.
   U8 deq() {
      if ( count_ == 0 ) {
         return 0;
      }
      U8 const byte = data()[0];
      std::memmove( data(), data() + 1, count_ - 1u );
      dropLast();
      head_ = static_cast< U8 >( ( head_ + 1u ) % byteQueueSlots );
      return byte;
   }

   // Removes one slot: at either end the span shortens; one in the middle cannot leave a hole, so
   // it is cleared. True if that changed something.
   bool del( U32 slot ) {
      U32 const i = offset( slot );
      if ( i >= count_ ) {
         return false;
      }
      if ( i == 0 ) {
         deq();
      } else if ( i + 1u == count_ ) {
         dropLast();
      } else {
         bool const changes = data()[i] != 0;
         data()[i] = 0;
         return changes;
      }
      return true;
   }

   void clear() {
      if ( !isInline() ) {
         delete[] block();
      }
      head_ = 0;
      count_ = 0;
   }

   // A new span: slots that stay within it keep their bytes, the others of it are 0. The caller
   // has checked the count.
   void metadataIs( ByteQueueMetadata span ) {
      U8 kept[byteQueueSlots] = {};
      for ( U32 i = 0; i < span.count; ++i ) {
         kept[i] = at( ( span.head + i ) % byteQueueSlots );
      }
      clear();
      head_ = static_cast< U8 >( span.head % byteQueueSlots );
      for ( U32 i = 0; i < span.count; ++i ) {
         appendSlot() = kept[i];
      }
   }

 private:
   U32 offset( U32 slot ) const { return ( slot + byteQueueSlots - head_ ) % byteQueueSlots; }

   // While the span is too long for the inline bytes, the block's address stands in them.
   bool isInline() const { return count_ <= inlineBytes; }
   U8 * block() const {
      U8 * address;
      std::memcpy( &address, inline_, sizeof address );
      return address;
   }
   U8 * data() { return isInline() ? inline_ : block(); }
   U8 const * data() const { return isInline() ? inline_ : block(); }

   U8 & appendSlot() {
      if ( count_ == inlineBytes ) {
         auto * fresh = new U8[byteQueueSlots];
         std::memcpy( fresh, inline_, inlineBytes );
         std::memcpy( inline_, &fresh, sizeof fresh );
      }
      ++count_;
      return data()[count_ - 1u];
   }
   void dropLast() {
      if ( count_ == inlineBytes + 1u ) {
         U8 * const old = block();
         std::memcpy( inline_, old, inlineBytes );
         delete[] old;
      }
      --count_;
   }

   U8 head_ = 0;
   U8 count_ = 0;
   U8 inline_[inlineBytes] = {};
};

} // namespace Korv
