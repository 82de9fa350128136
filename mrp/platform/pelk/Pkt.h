// A frame with a movable front.
//
// A packet shows its bytes as up to two io vectors, of which the second is always the shared part:
// a stretch of a shared buffer that is cut at its front by whoever reads, and grows at its front by
// whoever writes. Nothing is copied for that as long as there is room before the data.
//
// Shared by whoever holds a Ptr. Packets for sending come from the packet manager, received ones
// from the receive pool.
//
//  1. firstIoVec_ is the first io vector in use: 0 (a private head), 1 (the shared part), or
//     maxIovecs_ for an empty packet without a buffer.
//  2. data_ and data_ + dataBytes_ of the shared buffer stand within it, its end included.
//     dataBytes_ is unsigned and wraps: a reader who consumes more than there is goes on reading
//     what stands in the buffer behind the data, and is stopped only at the buffer's end.
#pragma once

#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Types.h"

#include <cstddef>
#include <span>

namespace Pelk {

using Korv::U32;
using Korv::U8;

class Pkt : public Korv::PtrInterface {
 public:
   // Memory with a stretch of data in it. The memory belongs to the class that derives.
   class SharedBuffer : public Korv::PtrInterface {
    public:
      SharedBuffer( U8 * buffer, std::size_t size, U8 * data, std::size_t dataBytes )
         : buffer_( buffer ), size_( size ), data_( data ), dataBytes_( dataBytes ) {}

      U8 * buffer() const { return buffer_; }
      std::size_t size() const { return size_; }
      U8 * data() const { return data_; }
      std::size_t dataBytes() const { return dataBytes_; }
      std::size_t room() const { return static_cast< std::size_t >( data_ - buffer_ ); }

    private:
      friend class Pkt;
      // Moves data_ by `head` and dataBytes_ by `bytes`, both modulo the width of an address, and
      // asserts that the data still stands in the buffer.
      void dataMove( std::size_t head, std::size_t bytes );

      U8 * buffer_;
      std::size_t size_;
      U8 * data_;
      std::size_t dataBytes_;
   };

   struct Iovec {
      U8 * data = nullptr;
      std::size_t bytes = 0;
   };
   static constexpr U32 maxIovecs_ = 2;

   Pkt() = default;
   explicit Pkt( Korv::Ptr< SharedBuffer > buffer );

   U8 * frontData() const { return firstIoVec_ < maxIovecs_ ? iov_[firstIoVec_].data : nullptr; }
   std::size_t frontBytes() const { return firstIoVec_ < maxIovecs_ ? iov_[firstIoVec_].bytes : 0; }
   std::size_t bytes() const;
   // The vectors in use, in the order of transmission.
   std::span< Iovec const > iovecs() const {
      return std::span< Iovec const >( iov_ ).subspan( firstIoVec_ );
   }
   Korv::Ptr< SharedBuffer > const & sharedBuffer() const { return sharedBuffer_; }

   // For readers: the front moves over n bytes.
   void delSharedHeadData( std::size_t n );
   // For writers: n more bytes at the front, which is elsewhere afterwards if there was no room.
   void newSharedHeadData( std::size_t n );
   void delSharedTailData( std::size_t n );
   void updateSharedIovec();

   // Bytes of the caller's own ahead of the shared part; they must outlive the packet.
   void privateHeadIs( U8 * data, std::size_t bytes );

 private:
   Iovec iov_[maxIovecs_];
   U32 firstIoVec_ = maxIovecs_;
   Korv::Ptr< SharedBuffer > sharedBuffer_;
};

} // namespace Pelk
