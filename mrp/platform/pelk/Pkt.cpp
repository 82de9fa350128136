#include "mrp/platform/pelk/Pkt.h"

#include "mrp/platform/korv/Assert.h"

#include <cstdint>
#include <cstring>
#include <memory>

namespace Pelk {

using Korv::assertThat;

namespace {

// As numbers: a position outside of the buffer is to be found out, not computed as a pointer.
std::uintptr_t address( U8 const * p ) { return reinterpret_cast< std::uintptr_t >( p ); }

bool ptrWithinRegion( std::uintptr_t ptr, U8 const * region, std::size_t size ) {
   return ptr - address( region ) <= size;
}

// A buffer for the case that a packet has grown beyond the room it came with.
class HeapBuffer : public Pkt::SharedBuffer {
 public:
   HeapBuffer( std::unique_ptr< U8[] > memory, std::size_t size, std::size_t dataBytes )
      : SharedBuffer( memory.get(), size, memory.get() + ( size - dataBytes ), dataBytes ),
        memory_( std::move( memory ) ) {}

 private:
   std::unique_ptr< U8[] > memory_;
};

} // namespace

void Pkt::SharedBuffer::dataMove( std::size_t head, std::size_t bytes ) {
   std::uintptr_t const data = address( data_ ) + head;
   dataBytes_ += bytes;
   assertThat( ptrWithinRegion( data, buffer_, size_ ),
               "ptrWithinRegion( data_, buffer_, size_ )" );
   assertThat( ptrWithinRegion( data + dataBytes_, buffer_, size_ ),
               "ptrWithinRegion( data_ + dataBytes_, buffer_, size_ )" );
   data_ = buffer_ + ( data - address( buffer_ ) );
}

Pkt::Pkt( Korv::Ptr< SharedBuffer > buffer )
   : firstIoVec_( 1 ), sharedBuffer_( std::move( buffer ) ) {
   updateSharedIovec();
}

std::size_t Pkt::bytes() const {
   std::size_t sum = 0;
   for ( Iovec const & iovec : iovecs() ) {
      sum += iovec.bytes;
   }
   return sum;
}

void Pkt::delSharedHeadData( std::size_t n ) {
   assertThat( static_cast< bool >( sharedBuffer_ ), "sharedBuffer_ != 0" );
   sharedBuffer_->dataMove( n, 0 - n );
   updateSharedIovec();
}

void Pkt::newSharedHeadData( std::size_t n ) {
   assertThat( static_cast< bool >( sharedBuffer_ ), "sharedBuffer_ != 0" );
   SharedBuffer const & old = *sharedBuffer_;
   if ( old.room() < n ) {
      assertThat( old.dataBytes_ <= old.size_, "dataBytes_ <= size_" );
      std::size_t const size = old.size_ + n;
      auto memory = std::make_unique< U8[] >( size );
      std::memcpy( memory.get() + ( size - old.dataBytes_ ), old.data_, old.dataBytes_ );
      sharedBuffer_ = new HeapBuffer( std::move( memory ), size, old.dataBytes_ );
   }
   sharedBuffer_->dataMove( 0 - n, n );
   updateSharedIovec();
}

void Pkt::delSharedTailData( std::size_t n ) {
   assertThat( static_cast< bool >( sharedBuffer_ ), "sharedBuffer_ != 0" );
   sharedBuffer_->dataMove( 0, 0 - n );
   updateSharedIovec();
}

void Pkt::updateSharedIovec() {
   assertThat( firstIoVec_ != maxIovecs_, "firstIoVec_ != maxIovecs_" );
   if ( sharedBuffer_ ) {
      iov_[1] = { sharedBuffer_->data_, sharedBuffer_->dataBytes_ };
   }
}

void Pkt::privateHeadIs( U8 * data, std::size_t bytes ) {
   iov_[0] = { data, bytes };
   firstIoVec_ = 0;
}

} // namespace Pelk
